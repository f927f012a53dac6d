import QtQuick 2.15
import Orvane.Installer

Column {
    id: view

    required property InstallerModel model

    spacing: 16

    Item {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 80
        height: 20 + 80
        SystemImage {
            objectName: "applicationIcon"
            y: 20
            width: 80
            height: 80
            Accessible.role: Accessible.Graphic
            Accessible.name: productName.text
        }
    }
    Label {
        id: productName
        objectName: "productName"
        anchors.horizontalCenter: parent.horizontalCenter
        text: "澄枫输入法"
        font { pixelSize: 20; weight: Font.Medium }
        color: Palette.black(0.85)
    }
    Label {
        objectName: "version"
        anchors.horizontalCenter: parent.horizontalCenter
        text: view.model.version
        font.pixelSize: 14
        color: Palette.gray
    }
    // As high as a button, so that nothing moves when the area changes.
    Item {
        width: parent.width
        height: 44
        Loader {
            objectName: "actionArea"
            anchors.horizontalCenter: parent.horizontalCenter
            sourceComponent: {
                if (view.model.isInstalling) return progress
                switch (view.model.status) {
                case InstallerModel.Success: return quit
                case InstallerModel.NeedAdmin: return needAdmin
                case InstallerModel.Failed: return failed
                default: return install
                }
            }
        }
    }
    Label {
        objectName: "footer"
        anchors.horizontalCenter: parent.horizontalCenter
        topPadding: 8
        text: "适用于 macOS 11.5 及以上版本"
        font.pixelSize: 12
        color: Palette.gray
    }

    Component {
        id: install
        PrimaryButton {
            objectName: "installButton"
            text: "安装"
            onClicked: view.model.userPressedInstall()
        }
    }
    Component {
        id: quit
        PrimaryButton {
            objectName: "quitButton"
            text: "安装成功"
            onClicked: view.model.quit()
        }
    }
    Component {
        id: progress
        Column {
            width: view.width
            spacing: view.spacing
            NumberAnimation on opacity {
                from: 0; to: 1
                duration: 350
                easing.type: Easing.InOutQuad
            }
            ProgressBar {
                objectName: "progressBar"
                x: 40
                width: parent.width - 2 * 40
                value: view.model.installProgress
                duration: view.model.progressAnimation
            }
            Label {
                objectName: "progressText"
                anchors.horizontalCenter: parent.horizontalCenter
                text: view.model.progressText
                font.pixelSize: 14
                color: Palette.gray
            }
        }
    }
    Component {
        id: needAdmin
        NoticeBox {
            id: needAdminNotice
            objectName: "needAdminNotice"
            color: Palette.primarySoft
            text: "请输入管理员账号密码"
            SecondaryButton {
                objectName: "retryAuthorisationButton"
                text: "重试"
                padding: needAdminNotice.buttonPadding
                color: Palette.white(0.7)
                onClicked: view.model.userPressedRetryAuthorisation()
            }
        }
    }
    Component {
        id: failed
        NoticeBox {
            id: failureNotice
            objectName: "failureNotice"
            color: Palette.warning
            text: view.model.failureMessage
            textInTwoLines: view.model.failureMessageInTwoLines
            SecondaryButton {
                objectName: "keyboardSettingsButton"
                text: "打开键盘设置"
                padding: failureNotice.buttonPadding
                color: Palette.white(0.8)
                onClicked: view.model.openKeyboardSettings()
            }
            SecondaryButton {
                objectName: "retryButton"
                text: "重试"
                padding: failureNotice.buttonPadding
                color: Palette.white(0.8)
                onClicked: view.model.userPressedInstall()
            }
        }
    }
}
