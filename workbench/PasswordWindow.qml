import QtQuick 2.15
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
    height: column.height + 2 * 24

    Shortcut {
        sequence: "Escape"
        onActivated: window.end(false)
    }

    Column {
        id: column
        x: 24
        y: 24
        width: parent.width - 2 * 24
        spacing: 10

        SystemImage {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 72
            height: 72
        }
        Words {
            topPadding: 6
            maximumLineCount: 6
            elide: Text.ElideRight
            text: window.prompt
            font { pixelSize: 15; weight: Palette.semibold }
            color: Palette.black(0.85)
        }
        Words {
            bottomPadding: 8
            text: "输入密码以允许此操作。"
            color: Palette.black(0.55)
        }
        Field {
            color: Palette.black(0.03)
            strokeColor: Palette.black(0.08)
            Label {
                anchors { fill: parent; leftMargin: 10; rightMargin: 10 }
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                text: window.userName
                Accessible.name: "用户名 " + text
                color: Palette.black(0.7)
            }
        }
        Field {
            ContinuousRectangle {
                visible: field.activeFocus
                anchors { fill: parent; margins: -3 }
                radius: 7 + 3
                strokeWidth: 3
                strokeColor: Palette.focusRing
            }
            // What assistive tools are told: the toolkit would tell them the field's text.
            FocusScope {
                readonly property string text: field.displayText
                anchors { fill: parent; leftMargin: 10; rightMargin: 10 }
                focus: true
                Accessible.role: Accessible.EditableText
                Accessible.description: "密码" // a password field gets no name
                Accessible.passwordEdit: true

                TextInput {
                    id: field
                    anchors.fill: parent
                    verticalAlignment: TextInput.AlignVCenter
                    focus: true
                    activeFocusOnTab: true
                    clip: true
                    echoMode: TextInput.Password
                    passwordMaskDelay: 0
                    inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText
                    selectByMouse: true
                    selectionColor: Palette.accent
                    color: Palette.black(0.85)
                    Accessible.ignored: true
                    onAccepted: window.end(true)
                }
                Label {
                    anchors.fill: parent
                    visible: field.length === 0
                    verticalAlignment: Text.AlignVCenter
                    text: "密码"
                    color: Palette.black(0.3)
                    Accessible.ignored: true
                }
            }
        }
        Row {
            topPadding: 12
            spacing: 12
            PlainButton {
                width: 130
                height: 36
                radius: 9
                color: Palette.black(0.06)
                textColor: Palette.black(0.8)
                font { pixelSize: 14; weight: Font.Medium }
                text: "取消"
                onClicked: window.end(false)
            }
            PrimaryButton {
                width: 130
                height: 36
                radius: 9
                font { pixelSize: 14; weight: Palette.semibold }
                text: "好"
                onClicked: window.end(true)
            }
        }
    }

    component Words: Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    component Field: ContinuousRectangle {
        width: parent.width
        height: 32
        radius: 7
        color: "white"
        strokeWidth: 1
        strokeColor: Palette.black(0.16)
    }
}
