import QtQuick 2.15
import Orvane.Installer

PlainButton {
    implicitWidth: 240
    implicitHeight: 44
    radius: 8
    gradient: Palette.primaryFill
    textColor: "white"
}
