import QtQuick 2.15
import Orvane.Installer

// What fills the window: one of two screens and, over it, the exit confirmation.
Item {
    id: body

    required property InstallerModel model

    Accessible.role: Accessible.Pane
    Accessible.name: model.appDisplayName

    FocusScope {
        anchors.fill: parent
        // Nothing below the overlay is pressed, hovered or focused.
        enabled: !body.model.showExitEnableConfirm
        onEnabledChanged: if (enabled) forceActiveFocus()

        Loader {
            anchors { fill: parent; margins: 16 }
            active: !waiting.active
            sourceComponent: Item {
                InstallerMainView {
                    objectName: "installerMainView"
                    anchors.centerIn: parent
                    width: parent.width
                    model: body.model
                }
            }
        }
        Loader {
            id: waiting
            anchors.fill: parent
            active: body.model.status === InstallerModel.WaitingEnable
            sourceComponent: EnableWaitingView {
                model: body.model
            }
            onLoaded: body.model.enableWaitingViewDidAppear()
            onActiveChanged: if (!active) body.model.enableWaitingViewDidDisappear()
        }
    }
    Loader {
        anchors.fill: parent
        active: body.model.showExitEnableConfirm
        sourceComponent: ExitConfirmOverlay {
            objectName: "exitConfirmOverlay"
            model: body.model
        }
    }
}
