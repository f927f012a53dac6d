import QtQuick 2.15
import Orvane.Installer

// The question that the installer's guide shows, in the same measures. Only its
// buttons answer it.
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
    width: 360 + 2 * 24
    height: column.height + 2 * 32
    // In a corner of the screen, where the installer's guide is not.
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
            color: Palette.black(0.55)
        }
        Label {
            width: 360
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 6
            elide: Text.ElideRight
            lineHeightMode: Text.FixedHeight
            lineHeight: 22
            text: "“" + window.appName + "”想启用第三方\n输入法“" + window.inputMethodName + "”"
            font { pixelSize: 16; weight: Palette.semibold }
            color: Palette.black(0.82)
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 16
            AnswerButton {
                font { pixelSize: 14; weight: Font.Medium }
                textColor: Palette.black(0.78)
                strokeColor: Palette.black(0.08)
                strokeWidth: 1
                text: "不允许"
                onClicked: window.answer(false)
            }
            AnswerButton {
                font { pixelSize: 14; weight: Palette.semibold }
                textColor: Palette.black(0.82)
                strokeColor: Palette.primaryStroke
                strokeWidth: 2
                text: "好"
                onClicked: window.answer(true)
            }
        }
    }

    component AnswerButton: PlainButton {
        property alias strokeColor: outline.strokeColor
        property alias strokeWidth: outline.strokeWidth
        width: 108
        height: 34
        radius: 10
        color: "white"
        ContinuousRectangle {
            id: outline
            anchors.fill: parent
            radius: 10
        }
    }
}
