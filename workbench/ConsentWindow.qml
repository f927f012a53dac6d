import QtQuick 2.15
import Orvane.Installer
import Orvane.Workbench

// The question that the enable guide pictures, in the guide's own measures.
Rectangle {
    id: root

    required property ConsentQuestion question

    implicitWidth: 360 + 2 * 24
    implicitHeight: column.height + 2 * 32
    color: "white"
    // Its edge where no window manager draws one.
    border { width: 1; color: Palette.black(0.12) }
    Accessible.role: Accessible.AlertMessage
    Accessible.name: sentence.text

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
        CentredText {
            id: sentence
            anchors.horizontalCenter: parent.horizontalCenter
            pattern: "“%1”想启用第三方\n输入法“%2”"
            names: [root.question.appName, root.question.inputMethodName]
            font { pixelSize: 16; weight: Palette.semibold }
            color: Palette.black(0.82)
            lineHeight: 19 + 3
            maximumWidth: 360
            Accessible.role: Accessible.StaticText
            Accessible.name: text
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
                onClicked: root.question.answered(false)
            }
            AnswerButton {
                font { pixelSize: 14; weight: Palette.semibold }
                textColor: Palette.black(0.82)
                strokeColor: Palette.primaryStroke
                strokeWidth: 2
                text: "好"
                onClicked: root.question.answered(true)
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
