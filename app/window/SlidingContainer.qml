import QtQuick

// The side-menu container: the menu lies under the left edge and the top
// screen slides right to show it. The top screen follows a drag that starts
// at its left edge (or anywhere on it while the menu shows); a tap on the part
// still showing slides it back. Whether the menu shows is decided outside:
// this item asks with requestOpen and follows `open`.
Item {
    id: container

    property bool open: false
    property real anchorRightPeekAmount: 100
    property real anchorLeftRevealAmount: 250
    // The menu shows its reveal amount, but never so much that less than the
    // peek amount of the top screen stays in view (a narrow window).
    readonly property real revealWidth: Math.max(0, Math.min(anchorLeftRevealAmount, width - anchorRightPeekAmount))
    // Drags that open the menu start in this strip along the left edge, below edgeTop.
    property real edgeWidth: 16
    property real edgeTop: 0
    property color shadowColor: "black"

    property alias under: underHolder.data
    default property alias content: top.data
    readonly property alias topX: top.x

    signal requestOpen(bool open)

    function slideTo(target) {
        slide.stop();
        slide.to = target;
        slide.start();
    }

    onOpenChanged: slideTo(open ? revealWidth : 0)
    onRevealWidthChanged: if (open && !grip.moved) top.x = revealWidth

    Item {
        id: underHolder
        width: container.revealWidth
        height: container.height
        visible: top.x > 0
    }

    Item {
        id: top
        width: container.width
        height: container.height
        clip: true

        NumberAnimation on x {
            id: slide
            running: false
            duration: 250
            easing.type: Easing.OutCubic
        }
    }

    // The top screen's shadow on the menu.
    Rectangle {
        x: top.x - width
        width: 12
        height: container.height
        visible: top.x > 0
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0.0; color: "transparent" }
            GradientStop { position: 1.0; color: Qt.rgba(container.shadowColor.r, container.shadowColor.g,
                                                          container.shadowColor.b, 0.35) }
        }
    }

    MouseArea {
        id: grip
        objectName: "sideMenuGrip"

        property real pressX: 0
        property real startX: 0
        property real lastDx: 0
        property bool moved: false

        x: top.x
        y: container.open ? 0 : container.edgeTop
        width: container.open ? container.width - top.x : container.edgeWidth
        height: container.height - y

        onPressed: (mouse) => {
            pressX = mapToItem(container, mouse.x, mouse.y).x;
            startX = top.x;
            lastDx = 0;
            moved = false;
        }
        onPositionChanged: (mouse) => {
            const dx = mapToItem(container, mouse.x, mouse.y).x - pressX;
            if (!moved && Math.abs(dx) < 6)
                return;
            if (!moved)
                slide.stop();
            moved = true;
            lastDx = dx;
            top.x = Math.max(0, Math.min(container.revealWidth, startX + dx));
        }
        onReleased: {
            if (!moved) {
                if (container.open)
                    container.requestOpen(false);
                return;
            }
            moved = false;
            // Past half way opens, unless the last movement went back; a drag that
            // ends where the state already is slides home.
            const wantOpen = top.x > container.revealWidth / 2;
            if (wantOpen !== container.open)
                container.requestOpen(wantOpen);
            else
                container.slideTo(container.open ? container.revealWidth : 0);
        }
        onCanceled: {
            moved = false;
            container.slideTo(container.open ? container.revealWidth : 0);
        }
    }
}
