// A segmented control: a row of choices, one of them chosen, in the main colour.
pragma ComponentBehavior: Bound
import QtQuick
import Quillo.Kit

Item {
    id: row

    property var titles: []
    property int currentIndex: 0
    property string accessibleName
    signal activated(int index)

    Accessible.role: Accessible.PageTabList
    Accessible.name: accessibleName

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: "transparent"
        border.color: Colorer.mainColor
        border.width: 2
    }

    Row {
        anchors.fill: parent
        Repeater {
            model: row.titles
            delegate: Rectangle {
                id: segment
                required property int index
                required property string modelData
                width: row.width / Math.max(1, row.titles.length)
                height: row.height
                radius: height / 2
                color: index === row.currentIndex ? Colorer.mainColor : "transparent"
                scale: tap.pressed ? 0.95 : 1.0
                Accessible.role: Accessible.PageTab
                Accessible.name: modelData
                Accessible.checked: index === row.currentIndex

                KitLabel {
                    anchors.fill: parent
                    anchors.margins: parent.height * 0.15
                    text: segment.modelData
                    color: segment.index === row.currentIndex ? Colorer.backgColor : Colorer.mainColor
                }
                TapHandler {
                    id: tap
                    onTapped: {
                        row.currentIndex = segment.index
                        row.activated(segment.index)
                    }
                }
            }
        }
    }
}
