import QtQuick 2.15
import Orvane.Installer

// A message and its buttons on a tinted box of fixed size. Nothing reaches out of it.
Announcement {
    id: box

    property alias color: fill.color
    required property string text
    property alias spacing: row.spacing
    default property alias buttons: buttonRow.data

    implicitWidth: 240
    implicitHeight: 44
    Accessible.name: text

    // What the buttons leave of a line.
    readonly property real room: width - 2 * 8 - buttonRow.width - row.spacing
    // The toolkit fills the first of two lines, and may so break a word. Here the text
    // breaks at a blank, or else so that the second line is full.
    function broken(): string {
        const full = Math.floor(room / message.minimumPixelSize)
        return text.length > full ? text.replace(new RegExp(` |(?=.{${full}}$)`), "$&\n") : text
    }

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
            // A long text gets smaller.
            width: Math.min(implicitWidth, box.room)
            text: box.broken()
            height: box.height
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: 14
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 11
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            color: Palette.black(0.85)
            Accessible.name: box.text
        }
        Row {
            id: buttonRow
            anchors.verticalCenter: parent.verticalCenter
            spacing: row.spacing
        }
    }
}
