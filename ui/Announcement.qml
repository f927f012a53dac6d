import QtQuick 2.15

// Takes the focus when it appears, so that assistive tools speak its name once.
Item {
    Accessible.role: Accessible.Grouping
    Accessible.focusable: true
    Accessible.ignored: !enabled // below the overlay
    Component.onCompleted: forceActiveFocus()
}
