import QtQuick 2.15
import QtQuick.Controls.Basic

// The list of input sources, each with a switch.
Window {
    id: window

    required property var list

    visible: true
    title: "键盘 · 输入法"
    width: 460
    height: rows.height

    Column {
        id: rows
        width: parent.width
        padding: 12

        Label {
            padding: 12
            text: "打开后即可用它输入文字"
        }
        Repeater {
            // The number and not the list, so that a row outlives a change of its
            // source and keeps the focus.
            model: window.list.sources.length
            SwitchDelegate {
                required property int index
                readonly property var source: window.list.sources[index] ?? {}
                readonly property string note: source.isAsked ? "（等待许可）" : source.isCurrent ? "（当前）" : ""

                width: rows.width - 2 * rows.padding
                focusPolicy: Qt.StrongFocus
                text: (source.name ?? "") + note
                enabled: !source.isFixed
                checked: source.isEnabled ?? false
                onToggled: window.list.setEnabled(source.id, checked)
            }
        }
    }
}
