import QtQuick 2.15
import Orvane.Installer

Announcement {
    id: view

    required property InstallerModel model

    Accessible.name: title.text
    Accessible.description: instruction.text

    readonly property real contentWidth: Math.max(width - 64, 0)
    readonly property real contentHeight: Math.max(height - 64, 0)
    readonly property real illustrationHeight:
        Math.max(Math.min(contentHeight - 94 - 94, 560), 200)
    // The height that the four spacers share. It may be less than their minimums
    // need; the column is then higher than its frame, and reaches into the padding
    // above and below by the same amount.
    readonly property real spacer:
        (contentHeight - title.height - instruction.height - illustration.height - button.height) / 4

    Column {
        width: view.contentWidth
        anchors.centerIn: parent

        Item { width: 1; height: Math.max(view.spacer, 28) }
        Label {
            id: title
            anchors.horizontalCenter: parent.horizontalCenter
            text: "启用输入法"
            font { pixelSize: 30; weight: Palette.semibold }
            color: Palette.black(0.85)
        }
        Label {
            id: instruction
            anchors.horizontalCenter: parent.horizontalCenter
            topPadding: 12
            width: Math.min(implicitWidth, view.contentWidth)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            text: "为了正常使用，请将「澄枫输入法」添加到输入法列表"
            font.pixelSize: 16
            color: Palette.gray
        }
        Item { width: 1; height: Math.max(view.spacer, 18) }
        EnableGuideIllustration {
            id: illustration
            width: parent.width
            height: view.illustrationHeight
            appName: view.model.appDisplayName
        }
        Item { width: 1; height: Math.max(view.spacer, 18) }
        PrimaryButton {
            id: button
            objectName: "goEnableButton"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(view.contentWidth, 360)
            height: 56
            radius: 14
            font { pixelSize: 18; weight: Palette.semibold }
            text: "去启用"
            onClicked: view.model.userPressedGoEnable()
        }
        Item { width: 1; height: Math.max(view.spacer, 20) }
    }
}
