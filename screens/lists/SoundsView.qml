import QtQuick
import Quillo.Lists

// The sounds list screen.
ListScreen {
    tableName: "soundsTable"
    controller: SoundsTVC {}
}
