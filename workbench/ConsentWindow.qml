import QtQuick 2.15
import QtQuick.Controls.Basic
import Orvane.Installer

// The question that the installer's guide shows. Only its buttons answer it.
Window {
    id: window

    required property string appName
    required property string inputMethodName
    // Undefined until the user answers.
    property var isAllowed

    function answer(allowed: bool) {
        isAllowed = allowed
        Qt.exit(0)
    }

    title: "输入法许可"
    visible: true
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowStaysOnTopHint
    width: 400
    height: column.height + 2 * 32
    // In a corner of the screen, so that it does not cover the installer's guide.
    x: Screen.virtualX + Screen.desktopAvailableWidth - width - 24
    y: Screen.virtualY + 48
    onClosing: close => close.accepted = false

    Column {
        id: column
        anchors.centerIn: parent
        spacing: 18
        SystemImage {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 44
            height: 44
            symbol: "gearshape.fill"
            color: "gray"
        }
        Label {
            width: 352
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 6
            elide: Text.ElideRight
            text: "“" + window.appName + "”想启用第三方\n输入法“" + window.inputMethodName + "”"
            font { pixelSize: 16; bold: true }
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 16
            Answer {
                text: "不允许"
                onClicked: window.answer(false)
            }
            Answer {
                highlighted: true
                palette.dark: Palette.accent
                text: "好"
                onClicked: window.answer(true)
            }
        }
    }

    component Answer: Button {
        width: 108
        Accessible.onPressAction: clicked() // the toolkit's own does nothing
    }
}
