import QtQuick
import QtQuick.Shapes

// A named button image, drawn in one colour from a path on a 24 x 24 grid.
// It stands in for the icon set (resources/icons, the same names) until the
// window loads those images; every place that shows an icon goes through here.
Item {
    id: glyph

    property string name
    property color color: "black"

    // Rings are two circles filled with the odd-even rule.
    readonly property string ring: "M12 1.5a10.5 10.5 0 1 1 0 21a10.5 10.5 0 1 1 0-21z"
                                   + "M12 3.4a8.6 8.6 0 1 0 0 17.2a8.6 8.6 0 1 0 0-17.2z"
    readonly property var paths: ({
        "formenu": "M3 5h18v2.2H3z M3 10.9h18v2.2H3z M3 16.8h18v2.2H3z",
        "disclosure": "M7 3.5l11 8.5-11 8.5z",
        "backarrow": "M15.5 3.5l1.8 1.8L10.6 12l6.7 6.7-1.8 1.8L7 12z",
        "playButton256": ring + "M9.7 7.4L17 12l-7.3 4.6z",
        "stopButton256": ring + "M8.6 8.6h6.8v6.8H8.6z",
        "tracksGlobal": "M2 4h11v3.5H2z M8 10.25h14v3.5H8z M4 16.5h10v3.5H4z",
        "loopsGlobal": "M1.5 6.5h4.2v4.2H1.5z M7.2 6.5h4.2v4.2H7.2z M12.9 6.5h4.2v4.2h-4.2z M18.6 6.5h4.2v4.2h-4.2z"
                       + "M1.5 13.3h4.2v4.2H1.5z M7.2 13.3h4.2v4.2H7.2z M12.9 13.3h4.2v4.2h-4.2z M18.6 13.3h4.2v4.2h-4.2z",
        "soundsGlobal": "M2.5 9h1.8v6H2.5z M6 5.5h1.8v13H6z M9.5 2.5h1.8v19H9.5z M13 7h1.8v10H13z"
                        + "M16.5 4.5h1.8v15h-1.8z M20 8.5h1.8v7H20z"
    })

    implicitWidth: 22
    implicitHeight: 22

    Shape {
        width: 24
        height: 24
        scale: Math.min(glyph.width, glyph.height) / 24
        transformOrigin: Item.TopLeft
        antialiasing: true

        ShapePath {
            strokeWidth: -1
            fillColor: glyph.color
            fillRule: ShapePath.OddEvenFill
            PathSvg { path: glyph.paths[glyph.name] ?? "" }
        }
    }
}
