import QtQuick 2.15
import Orvane.Installer

// A message and its buttons on a tinted box of fixed size, which nothing leaves.
Item {
    id: box

    property alias color: fill.color
    property string text
    // The same text with the line break that it gets where one line has no room.
    property string textInTwoLines: text
    default property alias buttons: buttonRow.data
    // The buttons' padding beside their labels.
    readonly property real buttonPadding: fitted.button

    readonly property var fittedInOneLine: fit(oneLine.implicitWidth)
    readonly property bool hasTwoLines: fittedInOneLine.missing > 0
    readonly property var fitted: hasTwoLines ? fit(twoLines.implicitWidth) : fittedInOneLine

    // The gap between neighbours, the padding at the sides of the box and that of the
    // buttons, for a text of this width. They give way in this order, each down to its
    // least, until all fits; `missing` is what the text still has to give.
    function fit(textWidth) {
        const count = buttonRow.children.length
        let missing = textWidth + count * (12 + 2 * 10) + 2 * 12 - width
        for (let i = 0; i < count; ++i) missing += buttonRow.children[i].labelWidth
        function shrink(from, least, times) {
            const by = Math.max(0, Math.min(missing / times, from - least))
            missing -= by * times
            return from - by
        }
        const gap = shrink(12, 6, count)
        const side = shrink(12, 8, 2)
        const button = shrink(10, 6, 2 * count)
        return { gap, side, button, missing: Math.max(0, missing) }
    }

    implicitWidth: 240
    implicitHeight: 44

    ContinuousRectangle {
        id: fill
        anchors.fill: parent
        radius: 8
    }
    Text {
        id: oneLine
        visible: false
        text: box.text
        textFormat: Text.PlainText
        font.pixelSize: 14
    }
    Text {
        id: twoLines
        visible: false
        text: box.textInTwoLines
        textFormat: Text.PlainText
        font.pixelSize: 14
    }
    Row {
        objectName: "noticeRow"
        anchors.centerIn: parent
        spacing: box.fitted.gap

        Label {
            id: message
            objectName: "noticeText"
            readonly property real room: twoLines.implicitWidth - box.fitted.missing
            anchors.verticalCenter: parent.verticalCenter
            // Whole pixels, down to 11; what is still too long ends in "…".
            width: box.hasTwoLines ? room : implicitWidth
            font.pixelSize: box.hasTwoLines
                ? Math.max(11, Math.min(14, Math.floor(14 * room / twoLines.implicitWidth))) : 14
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.name: box.text
            text: box.hasTwoLines ? box.textInTwoLines : box.text
            color: Palette.black(0.85)
        }
        Row {
            id: buttonRow
            anchors.verticalCenter: parent.verticalCenter
            spacing: box.fitted.gap
        }
    }
}
