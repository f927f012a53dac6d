// From version 6 QtQuick has a Palette of its own, so what uses this one imports 2.15.
pragma Singleton
import QtQuick 2.15

QtObject {
    // The brand.
    readonly property color primaryTop: Qt.rgba(0.46, 0.76, 0.98, 1.0)
    readonly property color primaryBottom: Qt.rgba(0.61, 0.52, 0.99, 1.0)
    // From the top-left to the bottom-right corner.
    readonly property var primaryFill: [primaryTop, primaryBottom]
    readonly property color primarySoft: Qt.rgba(primaryTop.r, primaryTop.g, primaryTop.b, 0.16)
    readonly property color primaryStroke: Qt.rgba(primaryTop.r, primaryTop.g, primaryTop.b, 0.9)
    readonly property color warning: Qt.rgba(1.0, 0.66, 0.14, 0.12)

    // The system's.
    readonly property color accent: "#007aff"
    readonly property color focusRing: Qt.rgba(accent.r, accent.g, accent.b, 0.8)
    readonly property color gray: "#8e8e93"
    readonly property color red: "#ff3b30"
    readonly property color yellow: "#ffcc00"
    readonly property color green: "#28cd41"

    // The workbench's font has no weight between medium and bold.
    readonly property int semibold: Qt.platform.os === "osx" ? Font.DemiBold : Font.Bold

    function black(opacity: double): color { return Qt.rgba(0, 0, 0, opacity) }
    function white(opacity: double): color { return Qt.rgba(1, 1, 1, opacity) }
}
