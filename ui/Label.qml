import QtQuick 2.15

// A text that assistive tools read out. They are told of no other Text.
Text {
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !enabled // below the overlay
}
