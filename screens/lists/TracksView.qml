import QtQuick
import Quillo.Lists

// The tracks list screen.
ListScreen {
    tableName: "tracksTable"
    controller: TracksTVC {}
}
