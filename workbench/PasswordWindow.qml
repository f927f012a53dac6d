import QtQuick 2.15
import Orvane.Installer
import Orvane.Workbench

Rectangle {
    id: root

    required property PasswordPrompt prompt

    implicitWidth: 320
    implicitHeight: column.height + 2 * 24
    color: "white"
    // Its edge where no window manager draws one.
    border { width: 1; color: Palette.black(0.12) }
    Accessible.role: Accessible.Dialog
    Accessible.name: prompt.text

    Keys.onEscapePressed: prompt.cancelled()
    Component.onCompleted: password.forceActiveFocus()

    component Field: ContinuousRectangle {
        width: parent.width
        height: 32
        radius: 7
        color: "white"
        strokeWidth: 1
        strokeColor: Palette.black(0.16)
    }

    Column {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 24 }

        SystemImage {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 72
            height: 72
            LockBadge { anchors { right: parent.right; bottom: parent.bottom; margins: -4 } }
        }
        Item { width: 1; height: 16 }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 6
            elide: Text.ElideRight
            text: root.prompt.text
            font { pixelSize: 15; weight: Palette.semibold }
            color: Palette.black(0.85)
        }
        Item { width: 1; height: 6 }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            text: "输入密码以允许此操作。"
            color: Palette.black(0.55)
        }
        Item { width: 1; height: 18 }
        Field {
            color: Palette.black(0.03)
            strokeColor: Palette.black(0.08)
            Accessible.role: Accessible.StaticText
            Accessible.name: "用户名 " + root.prompt.userName
            Text {
                anchors { fill: parent; leftMargin: 10; rightMargin: 10 }
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
                textFormat: Text.PlainText
                text: root.prompt.userName
                color: Palette.black(0.7)
                Accessible.ignored: true
            }
        }
        Item { width: 1; height: 10 }
        Field {
            ContinuousRectangle {
                visible: password.activeFocus
                anchors { fill: parent; margins: -3 }
                radius: parent.radius + 3
                strokeWidth: 3
                strokeColor: Palette.focusRing
            }
            Text {
                anchors.fill: password
                visible: password.length === 0
                verticalAlignment: Text.AlignVCenter
                text: "密码"
                color: Palette.black(0.3)
                Accessible.ignored: true
            }
            TextInput {
                id: password
                anchors { fill: parent; leftMargin: 10; rightMargin: 10 }
                verticalAlignment: TextInput.AlignVCenter
                clip: true
                echoMode: TextInput.Password
                passwordMaskDelay: 0
                inputMethodHints: Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText
                selectByMouse: true
                selectionColor: Palette.accent
                color: Palette.black(0.85)
                activeFocusOnTab: true
                Accessible.role: Accessible.EditableText
                onAccepted: root.prompt.accepted(password)
            }
        }
        Item { width: 1; height: 22 }
        Row {
            id: buttons
            readonly property real buttonWidth: (width - spacing) / 2
            width: parent.width
            spacing: 12
            PlainButton {
                width: buttons.buttonWidth
                height: 36
                radius: 9
                color: Palette.black(0.06)
                textColor: Palette.black(0.8)
                font { pixelSize: 14; weight: Font.Medium }
                text: "取消"
                onClicked: root.prompt.cancelled()
            }
            PrimaryButton {
                width: buttons.buttonWidth
                height: 36
                radius: 9
                font { pixelSize: 14; weight: Palette.semibold }
                text: "好"
                onClicked: root.prompt.accepted(password)
            }
        }
    }
}
