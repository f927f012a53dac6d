import QtQuick 2.15
import Orvane.Installer

// How far the installation has come. After a refused prompt or a failed script it stays there.
Announcement {
    id: progress

    required property InstallerModel model

    implicitHeight: column.height
    Accessible.name: "正在安装"
    NumberAnimation on opacity {
        from: 0; to: 1
        duration: 350
        easing.type: Easing.InOutQuad
    }

    Column {
        id: column
        width: parent.width
        spacing: 16

        Item {
            id: bar
            objectName: "progressBar"
            x: 40
            width: parent.width - 2 * 40
            height: 4
            Accessible.role: Accessible.ProgressBar
            Accessible.name: `安装进度 ${Math.floor(progress.model.installProgress * 100)}%`

            Rectangle {
                anchors.fill: parent
                radius: 2
                color: Palette.black(0.08)
            }
            Rectangle {
                objectName: "progressFill"
                width: bar.width * shown
                height: parent.height
                radius: 2
                color: Palette.accent

                property real shown: progress.model.installProgress
                Behavior on shown { NumberAnimation { duration: progress.model.progressAnimation } }
            }
        }
        Label {
            objectName: "progressText"
            anchors.horizontalCenter: parent.horizontalCenter
            text: progress.model.progressText
            font.pixelSize: 14
            color: Palette.gray
        }
    }
    // Whatever ends in another way has a screen of its own, which comes before this is loaded.
    Loader {
        anchors.fill: parent
        asynchronous: true
        active: progress.model.status !== InstallerModel.Installing
        sourceComponent: Announcement {
            Accessible.name: "安装未完成，请关闭窗口后重新打开"
        }
    }
}
