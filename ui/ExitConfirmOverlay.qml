import QtQuick 2.15
import Orvane.Installer

Announcement {
    id: overlay

    required property InstallerModel model

    Accessible.role: Accessible.Dialog
    Accessible.name: model.appDisplayName
    Accessible.description: message.text

    Rectangle {
        anchors.fill: parent
        color: Palette.black(0.22)
    }
    SoftShadow {
        caster: card
        anchors.verticalCenterOffset: 10
        blur: 20
    }
    ContinuousRectangle {
        id: card
        anchors.centerIn: parent
        width: Math.max(Math.min(overlay.width - 100, 520), 320)
        height: Math.max(Math.min(overlay.height - 100, 420), 260)
        radius: 24
        color: "white"

        Item {
            anchors { left: parent.left; right: parent.right; top: parent.top; bottom: buttons.top }
            anchors.bottomMargin: 14

            Column {
                anchors.centerIn: parent
                spacing: 12
                SystemImage {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 36
                    height: 36
                    symbol: "keyboard"
                    color: Qt.rgba(Palette.gray.r, Palette.gray.g, Palette.gray.b, 0.7)
                }
                Label {
                    id: message
                    width: card.width - 2 * 28
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: `未启用「${overlay.model.appDisplayName}」\n退出安装将无法使用`
                    font { pixelSize: 18; weight: Palette.semibold }
                    color: Palette.black(0.85)
                    lineHeight: 26
                    lineHeightMode: Text.FixedHeight
                }
            }
        }
        Row {
            id: buttons
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 20 }
            leftPadding: 48
            rightPadding: 48
            spacing: 18
            PlainButton {
                objectName: "exitButton"
                width: 132
                height: 40
                radius: 12
                color: Palette.black(0.06)
                textColor: Palette.black(0.8)
                font { pixelSize: 16; weight: Font.Medium }
                text: "退出安装"
                onClicked: overlay.model.userPressedExit()
            }
            PrimaryButton {
                objectName: "exitGoEnableButton"
                width: 132
                height: 40
                radius: 12
                font { pixelSize: 16; weight: Palette.semibold }
                text: "去启用"
                onClicked: overlay.model.userPressedGoEnable()
            }
        }
    }
}
