import QtQuick 2.15
import Orvane.Installer

// A miniature of the system's question whether an input method may be added.
Item {
    id: guide

    required property string appName

    Accessible.role: Accessible.Graphic
    Accessible.name: prompt.text
    Accessible.ignored: !enabled // below the overlay

    // A placeholder: something in the window that the question lies upon. White on
    // white, it is seen by the shade beneath it.
    component Bar: Item {
        property alias color: fill.color
        Rectangle {
            anchors.fill: parent
            radius: 6
            color: Palette.black(0.08)
        }
        Rectangle {
            id: fill
            anchors.fill: parent
            radius: 6
        }
    }
    component Light: Rectangle {
        width: 10
        height: 10
        radius: 5
        opacity: 0.35
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
            Accessible.ignored: true
        }
    }

    ContinuousRectangle {
        anchors.fill: parent
        radius: 22
        color: Palette.black(0.045)
        gradientEnd: Palette.black(0.025)
    }

    SoftShadow {
        anchors { fill: mock; margins: -extent }
        transform: Translate { y: 2 }
        radius: mock.radius
        blur: 6 // ends within the backdrop
        color: Palette.black(0.12)
    }
    ContinuousRectangle {
        id: mock
        objectName: "guideWindow"
        // The lights, the pieces and the least that keeps them apart. A third line of
        // text may take the padding.
        readonly property real leastHeight: 22 + 44 + prompt.height + 34 + 18
        width: parent.width - 2 * 20
        height: Math.max(parent.height - 2 * 18, leastHeight)
        anchors.centerIn: parent
        radius: 14
        color: Palette.white(0.95)

        Row {
            id: lights
            x: 14
            y: 12
            spacing: 7
            Light { color: Palette.red }
            Light { color: Palette.yellow }
            Light { color: Palette.green }
        }
        // Where the question has a card they lie beside it, else beside the lights and
        // below them.
        Bar {
            id: upperBar
            x: card.isShown ? 14 : lights.x + lights.width + 14
            y: card.isShown ? card.y : lights.y + (lights.height - height) / 2
            width: 110
            height: 14
            color: Palette.white(0.55)
        }
        Bar {
            x: card.isShown ? 14 : parent.width - width - 14
            y: card.isShown ? upperBar.y + upperBar.height + 8 : upperBar.y
            width: 72
            height: 14
            color: Palette.white(0.35)
        }
        Bar {
            id: block
            objectName: "guideBlock"
            // Nothing of the question lies on it: a long name takes its place.
            visible: card.isShown || stack.isBesideBlock
            x: card.isShown ? parent.width - width - 14 : 14
            y: parent.height - height - 14
            width: 128
            height: 110
            color: Palette.white(0.28)
        }
        // Where there is room between the placeholders, the question has a card.
        Item {
            id: card
            readonly property bool isShown: width > 360 + 2 * 36
            x: block.width + 2 * 14
            width: parent.width - 2 * x
            y: lights.y + lights.height + 12
            height: parent.height - y - 14
            SoftShadow {
                visible: parent.isShown
                anchors { fill: parent; margins: -extent }
                radius: 14
                blur: 6
                color: Palette.black(0.12)
            }
            ContinuousRectangle {
                visible: parent.isShown
                anchors.fill: parent
                radius: 14
                color: "white"
            }
        }

        Item {
            id: body
            // The room that the pieces leave.
            readonly property real spare: height - 44 - prompt.height - 34
            anchors { fill: parent; topMargin: lights.y + lights.height }

            Column {
                id: stack
                objectName: "guideQuestion"
                // The gaps give way before anything that they keep apart.
                readonly property real gap: Math.min(28, body.spare * 0.15)
                readonly property real middle: (parent.width - width) / 2
                readonly property real room: parent.width - block.x - block.width
                readonly property bool isBesideBlock: room > width && room >= prompt.width + 2 * 12
                // In the middle of the window, or of what the block leaves of it.
                x: !isBesideBlock || middle >= parent.width - room + 12
                    ? middle : parent.width - (room + width) / 2
                y: card.isShown ? (parent.height - height) / 2 : body.spare * 0.1
                spacing: gap
                SystemImage {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 44
                    height: 44
                    symbol: "gearshape.fill"
                    color: Palette.black(0.55)
                }
                CentredText {
                    id: prompt
                    objectName: "guideText"
                    anchors.horizontalCenter: parent.horizontalCenter
                    pattern: "“%1”想启用第三方\n输入法“%1”"
                    names: [guide.appName]
                    font { pixelSize: 16; weight: Palette.semibold }
                    color: Palette.black(0.82)
                    // The system font's height, and 3 between lines.
                    lineHeight: 19 + 3
                    maximumWidth: Math.min(mock.width - 2 * 18, 360)
                    maximumLineCount: 3
                    minimumScale: 0.9
                    Accessible.ignored: true
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

    ContinuousRectangle {
        anchors.fill: parent
        radius: 22
        strokeWidth: 1
        strokeColor: Palette.black(0.06)
    }
}
