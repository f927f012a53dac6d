import QtQuick 2.15
import Orvane.Installer

Column {
    id: view

    required property InstallerModel model

    topPadding: 20
    spacing: 16

    SystemImage {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 80
        height: 80
        Accessible.role: Accessible.Graphic
        Accessible.name: productName.text
    }
    Label {
        id: productName
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
        Announcement {
            implicitWidth: button.width
            implicitHeight: button.height
            Accessible.name: button.text
            PrimaryButton {
                id: button
                text: "安装成功"
                onClicked: view.model.quit()
            }
        }
    }
    Component {
        id: progress
        InstallProgress {
            width: view.width
            model: view.model
        }
    }
    Component {
        id: needAdmin
        NoticeBox {
            color: Palette.primarySoft
            text: "请输入管理员账号密码"
            SecondaryButton {
                objectName: "retryAuthorisationButton"
                text: "重试"
                color: Palette.white(0.7)
                onClicked: view.model.userPressedRetryAuthorisation()
            }
        }
    }
    Component {
        id: failed
        NoticeBox {
            color: Palette.warning
            text: view.model.failureMessage
            spacing: 6
            SecondaryButton {
                text: "打开键盘设置"
                padding: 6
                color: Palette.white(0.8)
                onClicked: view.model.openKeyboardSettings()
            }
            SecondaryButton {
                objectName: "retryButton"
                text: "重试"
                padding: 6
                color: Palette.white(0.8)
                onClicked: view.model.userPressedInstall()
            }
        }
    }
}
