import QtQuick
import Quillo.Lists

// The loops list screen.
ListScreen {
    tableName: "loopsTable"
    controller: LoopsTVC {}
}
