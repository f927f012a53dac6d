import QtQuick 2.15

// A text of its own, which assistive tools read out. (Of a Text they learn nothing.)
Text {
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !enabled // below the overlay
}
