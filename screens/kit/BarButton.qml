// A navigation bar button: a 22 x 22 icon, touchable a little beyond its edges.
import QtQuick
import Quillo.Kit

ImageButton {
    width: Uier.barButtonSide
    height: Uier.barButtonSide
    touchMargin: Uier.barButtonSide / 2
}
