import QtQuick 2.15

// A padlock on a white ring, to lie on the corner of an icon.
Rectangle {
    implicitWidth: 28
    implicitHeight: 28
    radius: 14
    color: "white"
    Accessible.ignored: true

    Rectangle {
        anchors { fill: parent; margins: 2 }
        radius: width / 2
        color: "#6e6e73"
    }
    Rectangle {
        anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: 7 }
        width: 8
        height: 11
        radius: 4
        color: "transparent"
        border { width: 2; color: "white" }
    }
    Rectangle {
        anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: 13 }
        width: 12
        height: 8
        radius: 2
        color: "white"
    }
}
