import QtQuick 2.15

// A text that assistive tools read out. They do not see any other Text.
Text {
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !enabled // below the overlay
}
