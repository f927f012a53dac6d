import QtQuick 2.15
import Orvane.Installer

// A miniature of the system's question whether an input method may be added.
ContinuousRectangle {
    id: guide

    required property string appName

    radius: 22
    gradient: [Palette.black(0.045), Palette.black(0.025)]
    strokeWidth: 1
    strokeColor: Palette.black(0.06)
    Accessible.role: Accessible.Graphic
    Accessible.name: prompt.text
    Accessible.description: "请在弹出的询问中选择“好”"
    Accessible.ignored: !enabled // below the overlay

    component Light: Rectangle {
        width: 10
        height: 10
        radius: 5
        opacity: 0.35
    }
    component Placeholder: Rectangle {
        radius: 6
        color: "white"
    }
    component PromptButton: ContinuousRectangle {
        id: promptButton
        property alias text: label.text
        property int weight
        property alias textColor: label.color
        width: 108
        height: 34
        radius: 10
        color: "white"
        strokeWidth: 1
        Text {
            id: label
            anchors.centerIn: parent
            font { pixelSize: 14; weight: promptButton.weight }
        }
    }

    SoftShadow {
        caster: mock
        anchors.verticalCenterOffset: 2
        blur: 6 // ends within the backdrop
    }
    ContinuousRectangle {
        id: mock
        anchors.centerIn: parent
        width: parent.width - 2 * (20 + 56)
        height: parent.height - 2 * 18
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
        Placeholder { x: 20; y: 44; width: 110; height: 14; opacity: 0.55 }
        Placeholder { x: 20; y: 68; width: 72; height: 14; opacity: 0.35 }
        Placeholder {
            anchors { right: parent.right; bottom: parent.bottom; margins: 20 }
            width: 128; height: 110; opacity: 0.28
        }
        Column {
            anchors.centerIn: parent
            spacing: Math.min((mock.height - 44 - 54 - 34) / 4, 28)
            SystemImage {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 44
                height: 44
                symbol: "gearshape.fill"
                color: Palette.black(0.55)
            }
            // Two lines with room around them. A third one takes that room.
            Item {
                width: Math.min(mock.width - 2 * 6, 360)
                height: 54
                Text {
                    id: prompt
                    objectName: "guideText"
                    anchors.centerIn: parent
                    width: parent.width
                    height: 3 * lineHeight
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    text: `“${guide.appName}”想启用第三方\n输入法“${guide.appName}”`
                    textFormat: Text.PlainText
                    font { pixelSize: 16; weight: Palette.semibold }
                    color: Palette.black(0.82)
                    // The system font's height, and 3 between lines.
                    lineHeight: 19 + 3
                    lineHeightMode: Text.FixedHeight
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: 15 // the smallest that is no less than 0.9
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    elide: Text.ElideRight
                }
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 16
                PromptButton {
                    text: "不允许"
                    weight: Font.Medium
                    textColor: Palette.black(0.78)
                    strokeColor: Palette.black(0.08)
                }
                PromptButton {
                    text: "好"
                    weight: Palette.semibold
                    textColor: Palette.black(0.82)
                    strokeColor: Palette.primaryStroke
                    strokeWidth: 2
                }
            }
        }
    }
}
