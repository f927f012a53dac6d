import QtQuick 2.15
import Orvane.Installer

Item {
    id: bar

    // 0.0 to 1.0.
    property real value
    // How long a change of the value takes to show, in milliseconds.
    property int duration: 250

    implicitHeight: 4
    Accessible.role: Accessible.ProgressBar
    Accessible.name: `安装进度 ${Math.floor(value * 100)}%`

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Palette.black(0.08)
    }
    Rectangle {
        objectName: "progressFill"
        width: bar.width * shown
        height: parent.height
        radius: height / 2
        color: Palette.accent

        property real shown: bar.value
        Behavior on shown { NumberAnimation { duration: bar.duration } }
    }
}
