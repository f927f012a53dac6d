import QtQuick 2.15
import QtQuick.Controls.Basic
import Orvane.Installer

Window {
    id: window

    required property string prompt
    required property string userName
    readonly property alias password: field.text
    property bool isAccepted: false

    function end(accepted: bool) {
        isAccepted = accepted
        Qt.exit(0)
    }

    visible: true
    flags: Qt.Dialog | Qt.WindowStaysOnTopHint
    width: 320
    height: column.height + 2 * column.y

    Shortcut {
        sequence: "Escape"
        onActivated: window.end(false)
    }

    Column {
        id: column
        x: 24
        y: 24
        width: parent.width - 2 * x
        spacing: 12

        SystemImage {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 72
            height: 72
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: window.prompt
            font { pixelSize: 15; bold: true }
        }
        Label {
            width: parent.width
            elide: Text.ElideRight
            text: "输入“" + window.userName + "”的密码以允许此操作。"
        }
        // Assistive tools see this in place of the field, whose text the toolkit would tell.
        FocusScope {
            readonly property string text: field.displayText
            width: parent.width
            height: field.height
            focus: true
            Accessible.role: Accessible.EditableText
            Accessible.description: "密码" // a password field gets no name
            Accessible.passwordEdit: true

            TextField {
                id: field
                width: parent.width
                focus: true
                placeholderText: "密码"
                echoMode: TextField.Password
                passwordMaskDelay: 0
                inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText
                Accessible.ignored: true
                onAccepted: window.end(true)
            }
        }
        Row {
            spacing: 12
            Button {
                width: 130
                text: "取消"
                onClicked: window.end(false)
            }
            Button {
                width: 130
                highlighted: true
                palette.dark: Palette.accent
                text: "好"
                onClicked: window.end(true)
            }
        }
    }
}
