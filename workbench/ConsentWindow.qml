import QtQuick 2.15
import Orvane.Installer
import Orvane.Workbench

// The question that the enable guide pictures, in the guide's own measures.
Rectangle {
    id: root

    required property ConsentQuestion question

    implicitWidth: text.width + 2 * 24
    implicitHeight: column.height + 2 * 32
    color: "white"
    // Its edge where no window manager draws one.
    border { width: 1; color: Palette.black(0.12) }
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text.text

    FontMetrics {
        id: metrics
        font: text.font
    }

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
        Text {
            id: text
            anchors.horizontalCenter: parent.horizontalCenter
            width: 360
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            lineHeightMode: Text.FixedHeight
            lineHeight: metrics.lineSpacing + 3
            textFormat: Text.PlainText
            text: "“%1”想启用第三方\n输入法“%2”".arg(root.question.appName).arg(root.question.inputMethodName)
            font { pixelSize: 16; weight: Font.DemiBold }
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
                onClicked: root.question.answered(false)
            }
            AnswerButton {
                font { pixelSize: 14; weight: Font.DemiBold }
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
