import QtQuick

// A screen of the window's stack: what the navigation bar shows for it and
// what its bar buttons do. Every list and editor view derives from it.
Item {
    id: screen

    // The bar's title and the names of its buttons' icons ("formenu" on the
    // lists, "backarrow" on screens pushed over them; "addButton" on the right).
    property string title
    property string leftBarButton: "formenu"
    property string rightBarButton
    // The list kind this screen shows ("LoopFolder", ...), empty for other screens.
    property string typeOfItems
    property bool navigationBarHidden: false

    signal leftBarButtonTapped()
    signal rightBarButtonTapped()
    // The screen asks the window to show the side menu.
    signal menuRequested()
    // The screen asks the window to push another screen (a QML file) with these properties.
    signal pushRequested(string url, var properties)
}
