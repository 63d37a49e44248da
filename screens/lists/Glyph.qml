import QtQuick
import QtQuick.Shapes

// A named button image drawn as simple strokes in one colour. It stands in
// for the icon set (resources/icons, the same names) until the window loads
// those images; every place that shows an icon goes through here.
Item {
    id: glyph

    property string name
    property color color: "black"
    property real lineWidth: Math.max(1.5, width / 12)

    implicitWidth: 22
    implicitHeight: 22

    // "formenu": three bars.
    Repeater {
        model: glyph.name === "formenu" ? 3 : 0
        Rectangle {
            required property int index
            x: 0
            width: glyph.width
            height: glyph.lineWidth
            radius: height / 2
            y: glyph.height * (0.2 + 0.3 * index) - height / 2
            color: glyph.color
        }
    }

    // "playButton256" / "stopButton256": a ring with a triangle or a square.
    Rectangle {
        visible: glyph.name === "playButton256" || glyph.name === "stopButton256"
        anchors.fill: parent
        radius: width / 2
        color: "transparent"
        border.width: glyph.lineWidth
        border.color: glyph.color
    }
    Shape {
        visible: glyph.name === "playButton256"
        anchors.fill: parent
        ShapePath {
            strokeWidth: -1
            fillColor: glyph.color
            startX: glyph.width * 0.40; startY: glyph.height * 0.30
            PathLine { x: glyph.width * 0.72; y: glyph.height * 0.50 }
            PathLine { x: glyph.width * 0.40; y: glyph.height * 0.70 }
            PathLine { x: glyph.width * 0.40; y: glyph.height * 0.30 }
        }
    }
    Rectangle {
        visible: glyph.name === "stopButton256"
        anchors.centerIn: parent
        width: glyph.width * 0.34
        height: width
        radius: width * 0.15
        color: glyph.color
    }

    // "tracksGlobal": lanes of bars, "loopsGlobal": a two-by-four step grid,
    // "soundsGlobal": a waveform.
    Grid {
        visible: glyph.name === "loopsGlobal"
        anchors.centerIn: parent
        columns: 4
        spacing: glyph.width * 0.08
        Repeater {
            model: 8
            Rectangle {
                required property int index
                width: glyph.width * 0.19
                height: width
                radius: width * 0.25
                color: glyph.color
                opacity: [1, 0.45, 1, 0.45, 0.45, 1, 0.45, 1][index]
            }
        }
    }
    Repeater {
        model: glyph.name === "tracksGlobal" ? [[0, 0.55], [0.3, 0.7], [0.1, 0.45]] : []
        Rectangle {
            required property int index
            required property var modelData
            x: glyph.width * modelData[0]
            y: glyph.height * (0.18 + 0.3 * index)
            width: glyph.width * modelData[1]
            height: glyph.height * 0.2
            radius: height / 2
            color: glyph.color
        }
    }
    Row {
        visible: glyph.name === "soundsGlobal"
        anchors.centerIn: parent
        spacing: glyph.width * 0.07
        Repeater {
            model: [0.35, 0.7, 1.0, 0.55, 0.8, 0.4]
            Rectangle {
                required property var modelData
                anchors.verticalCenter: parent.verticalCenter
                width: glyph.width * 0.09
                height: glyph.height * modelData
                radius: width / 2
                color: glyph.color
            }
        }
    }

    // "backarrow": a chevron.
    Shape {
        visible: glyph.name === "backarrow"
        anchors.fill: parent
        ShapePath {
            strokeWidth: glyph.lineWidth
            strokeColor: glyph.color
            fillColor: "transparent"
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            startX: glyph.width * 0.62; startY: glyph.height * 0.15
            PathLine { x: glyph.width * 0.28; y: glyph.height * 0.5 }
            PathLine { x: glyph.width * 0.62; y: glyph.height * 0.85 }
        }
    }
}
