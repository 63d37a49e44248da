import QtQuick
Item {}
