import QtQuick

// A screen of the window's stack: what the navigation bar shows for it and
// what its bar buttons do. Every list and editor view derives from it.
Item {
    id: screen

    // The bar's title and the name of its left button's icon ("formenu" on
    // the lists, "backarrow" on screens pushed over them).
    property string title
    property string leftBarButton: "formenu"
    // The list kind this screen shows ("LoopFolder", ...), empty for other screens.
    property string typeOfItems
    property bool navigationBarHidden: false

    // The left bar button was tapped.
    signal leftBarButtonTapped()
    // The screen asks the window to show the side menu.
    signal menuRequested()
}
