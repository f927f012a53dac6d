import QtQuick 2.15
import Orvane.Installer

// A message and its buttons on a tinted box of fixed size. Nothing reaches out of it.
Announcement {
    id: box

    property alias color: fill.color
    // It may have a line break.
    property alias text: message.text
    property alias spacing: row.spacing
    default property alias buttons: buttonRow.data

    implicitWidth: 240
    implicitHeight: 44
    Accessible.name: text.replace("\n", "")

    ContinuousRectangle {
        id: fill
        anchors.fill: parent
        radius: 8
    }
    Row {
        id: row
        anchors.centerIn: parent
        spacing: 12

        Label {
            id: message
            // The text takes the room that the buttons leave. A long one gets smaller.
            width: Math.min(implicitWidth, box.width - 2 * 8 - buttonRow.width - row.spacing)
            height: box.height
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: 14
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 11
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            color: Palette.black(0.85)
            Accessible.name: box.Accessible.name
        }
        Row {
            id: buttonRow
            anchors.verticalCenter: parent.verticalCenter
            spacing: row.spacing
        }
    }
}
