import QtQuick 2.15
import Orvane.Installer

// A miniature of the system's question whether an input method may be added.
Item {
    id: guide

    required property string appName

    Accessible.role: Accessible.Graphic
    Accessible.name: prompt.text

    FontMetrics {
        id: metrics
        font: prompt.font
    }

    // A placeholder: something of the desktop that the window lies upon.
    component Bar: Rectangle {
        radius: 6
    }
    component Light: Rectangle {
        width: 10
        height: 10
        radius: 5
        opacity: 0.35
    }
    component PromptButton: ContinuousRectangle {
        property alias text: label.text
        property alias font: label.font
        property alias textColor: label.color
        width: 108
        height: 34
        radius: 10
        color: "white"
        strokeWidth: 1
        Text {
            id: label
            anchors.centerIn: parent
            font.pixelSize: 14
            Accessible.ignored: true
        }
    }

    ContinuousRectangle {
        anchors.fill: parent
        radius: 22
        color: Palette.black(0.045)
        gradientEnd: Palette.black(0.025)
    }

    Item {
        id: desktop
        anchors { fill: parent; leftMargin: 20; rightMargin: 20; topMargin: 18; bottomMargin: 18 }

        Bar {
            id: upperBar
            y: Math.round((parent.height - height) * 0.22)
            width: 110
            height: 14
            color: Palette.white(0.55)
        }
        Bar {
            y: upperBar.y + upperBar.height + 12
            width: 72
            height: 14
            color: Palette.white(0.35)
        }
        Bar {
            x: parent.width - width
            y: Math.round((parent.height - height) * 0.7)
            width: 128
            height: 110
            color: Palette.white(0.28)
        }
    }

    SoftShadow {
        anchors { fill: mock; margins: -extent }
        transform: Translate { y: 6 }
        radius: mock.radius
        blur: 12
        color: Palette.black(0.12)
    }
    ContinuousRectangle {
        id: mock
        objectName: "guideWindow"
        // Where there is room, no larger than the prompt asks for; a long name may
        // take the padding at the sides.
        anchors.centerIn: desktop
        width: Math.max(Math.min(desktop.width - 2 * 56, 360 + 2 * 56), prompt.width + 2 * 12)
        height: Math.min(desktop.height, stack.height + 2 * 40)
        radius: 14
        color: Palette.white(0.95)

        Row {
            x: 14
            y: 12
            spacing: 7
            Light { color: Palette.red }
            Light { color: Palette.yellow }
            Light { color: Palette.green }
        }

        Column {
            id: stack
            // The gaps give way before anything that they keep apart.
            readonly property real gap:
                Math.max(2, Math.min(18, (desktop.height - 44 - prompt.height - 34) / 4))
            anchors.centerIn: parent
            spacing: gap
            SystemImage {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 44
                height: 44
                symbol: "gearshape.fill"
                color: Palette.black(0.55)
            }
            Text {
                id: prompt
                objectName: "guideText"
                anchors.horizontalCenter: parent.horizontalCenter
                readonly property string longerLine: "“%1”想启用第三方".arg(guide.appName)
                width: Math.min(Math.ceil(metrics.advanceWidth(longerLine)), desktop.width - 2 * 12, 360)
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                lineHeightMode: Text.FixedHeight
                lineHeight: metrics.lineSpacing + 3
                maximumLineCount: 3
                elide: Text.ElideRight
                // Down to 0.9 of its size, in whole pixels.
                fontSizeMode: Text.VerticalFit
                minimumPixelSize: 15
                textFormat: Text.PlainText
                text: longerLine + "\n输入法“%1”".arg(guide.appName)
                font { pixelSize: 16; weight: Font.DemiBold }
                color: Palette.black(0.82)
                Accessible.ignored: true
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 16
                PromptButton {
                    text: "不允许"
                    font.weight: Font.Medium
                    textColor: Palette.black(0.78)
                    strokeColor: Palette.black(0.08)
                }
                PromptButton {
                    text: "好"
                    font.weight: Font.DemiBold
                    textColor: Palette.black(0.82)
                    strokeColor: Palette.primaryStroke
                    strokeWidth: 2
                }
            }
        }
    }

    ContinuousRectangle {
        anchors.fill: parent
        radius: 22
        strokeWidth: 1
        strokeColor: Palette.black(0.06)
    }
}
