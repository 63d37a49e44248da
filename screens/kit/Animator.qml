// The kit's animation routines, for any item. Moves take 0.3 s unless told;
// pops grow from scale 0.001 (a zero scale would lose the item's transform);
// a tile whose sound is sounding is shown at 0.75.
pragma Singleton
import QtQuick

QtObject {
    id: animator

    readonly property real moveTime: 0.3
    readonly property real choiceButtonTime: 0.1
    readonly property real zeroScale: 0.001
    readonly property real soundingScale: 0.75

    property Component _number: Component { NumberAnimation { easing.type: Easing.InOutQuad } }

    // Animates one property of the item; completion (optional) runs when it ends.
    function _run(item, property, to, seconds, completion) {
        const animation = _number.createObject(item, {
            target: item, property: property, to: to, duration: seconds * 1000
        })
        animation.finished.connect(function () {
            if (completion)
                completion()
            animation.destroy()
        })
        animation.start()
        return animation
    }

    function move(item, frame, seconds) {
        _run(item, "x", frame.x, seconds)
        _run(item, "y", frame.y, seconds)
        _run(item, "width", frame.width, seconds)
        _run(item, "height", frame.height, seconds)
    }
    function moveUpOrDown(item, distance) { _run(item, "y", item.y + distance, moveTime) }
    function scale(item, to, seconds) { _run(item, "scale", to, seconds) }
    function scaleFromZero(item, seconds) {
        item.scale = zeroScale
        _run(item, "scale", 1.0, seconds === undefined ? moveTime : seconds)
    }
    function scaleToZero(item, seconds, completion) {
        _run(item, "scale", zeroScale, seconds === undefined ? moveTime : seconds, completion)
    }
    function setSmallerSize(item) { item.scale = soundingScale }
    function setNormalSize(item) { item.scale = 1.0 }
    function fadeIn(item, seconds) { _run(item, "opacity", 1.0, seconds) }
    function fadeOut(item, seconds) { _run(item, "opacity", 0.0, seconds === undefined ? moveTime : seconds) }
    function removeAnimatedView(item) { item.destroy() }
}
