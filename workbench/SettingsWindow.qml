import QtQuick 2.15
import Orvane.Installer

// The list of input sources, each with a switch.
Window {
    id: window

    required property var list

    visible: true
    title: "键盘 · 输入法"
    width: 460
    height: header.height + card.height + 24 + 18 + 24

    Row {
        id: header
        x: 24
        y: 24
        spacing: 14
        SystemImage {
            width: 40
            height: 40
            symbol: "keyboard"
            color: Qt.rgba(Palette.gray.r, Palette.gray.g, Palette.gray.b, 0.9)
        }
        Column {
            anchors.verticalCenter: parent.verticalCenter
            Label {
                text: "输入法"
                font { pixelSize: 18; weight: Palette.semibold }
                color: Palette.black(0.85)
            }
            Label {
                text: "打开后即可用它输入文字"
                font.pixelSize: 12
                color: Palette.black(0.5)
            }
        }
    }

    ContinuousRectangle {
        id: card
        anchors { left: parent.left; right: parent.right; top: header.bottom }
        anchors { leftMargin: 24; rightMargin: 24; topMargin: 18 }
        height: rows.height
        radius: 12
        color: Palette.black(0.03)
        strokeWidth: 1
        strokeColor: Palette.black(0.06)

        Column {
            id: rows
            width: parent.width
            Repeater {
                // The number and not the list: a row then survives a change of its
                // source and keeps the focus.
                model: window.list.sources.length
                SourceRow { width: rows.width }
            }
        }
    }

    component SourceRow: Item {
        id: row
        required property int index
        readonly property var source: window.list.sources[index] ?? {}

        height: 58

        Rectangle {
            visible: row.index > 0
            x: 16
            width: parent.width - 2 * x
            height: 1
            color: Palette.black(0.06)
        }
        Column {
            anchors { left: parent.left; right: mark.left; margins: 16 }
            anchors.verticalCenter: parent.verticalCenter
            spacing: 1
            Label {
                width: parent.width
                elide: Text.ElideRight
                text: row.source.name ?? ""
                font { pixelSize: 14; weight: Font.Medium }
                color: Palette.black(0.85)
            }
            Label {
                width: parent.width
                elide: Text.ElideMiddle
                text: (row.source.isAsked ? "等待许可 · " : "") + (row.source.id ?? "")
                font.pixelSize: 11
                color: Palette.black(0.45)
            }
        }
        ContinuousRectangle {
            id: mark
            visible: row.source.isCurrent ?? false
            anchors { right: toggle.left; rightMargin: 14 }
            anchors.verticalCenter: parent.verticalCenter
            width: visible ? markText.width + 2 * 8 : 0
            height: 20
            radius: 6
            color: Palette.primarySoft
            Label {
                id: markText
                anchors.centerIn: parent
                text: "当前"
                font { pixelSize: 11; weight: Font.Medium }
                color: Palette.black(0.7)
            }
        }
        ToggleSwitch {
            id: toggle
            anchors { right: parent.right; rightMargin: 16 }
            anchors.verticalCenter: parent.verticalCenter
            enabled: !row.source.isFixed
            checked: row.source.isEnabled ?? false
            Accessible.name: row.source.name ?? ""
            Accessible.description: enabled ? "" : "不能更改"
            onToggled: window.list.setEnabled(row.source.id, checked)
        }
    }
}
