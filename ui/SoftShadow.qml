import QtQuick 2.15

// The shadow of a sibling. It ends three times the blur away from it, and its corners
// end nine times the blur from there.
BorderImage {
    required property Item caster
    required property int blur // the standard deviation: 6 or 20, of which there are pictures

    anchors { centerIn: caster; alignWhenCentered: false }
    width: caster.width + 2 * 3 * blur
    height: caster.height + 2 * 3 * blur
    source: `shadow-${blur}.png`
    border { left: 9 * blur; right: 9 * blur; top: 9 * blur; bottom: 9 * blur }
}
