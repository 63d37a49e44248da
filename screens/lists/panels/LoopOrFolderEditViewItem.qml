// The rename panel: the name-and-folder panel in a circle grown from the
// control that opened it, with Cancel and Done at the bottom.
import QtQuick
import Quillo.Kit as Kit
import Quillo.Lists

Kit.LAAnimatedViewItem {
    id: root

    required property LoopOrFolderEditView editView

    panel: editView
    focus: true

    NameNFlderChoosrContent {
        panel: root.editView
    }

    Keys.onEscapePressed: root.editView.cancelPressed()
}
