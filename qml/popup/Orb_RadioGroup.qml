import QtQuick 2.0
import QtQuick.Controls 1.1

// A titled row of choices, of which one holds. Its children stand behind them.
GroupBox {
    id: orb_radioGroup

    property var choices: [] // of objects with a text and a value
    property var choice // the value of the one that holds
    default property alias extras: extras.data

    // The value of the choice that a stored text or number names, else `other`.
    function named(stored, other) {
        for (var i = 0; i < choices.length; ++i) {
            if (String(choices[i].value) === String(stored))
                return choices[i].value
        }
        return other
    }

    width: parent.width

    Row {
        spacing: 20

        ExclusiveGroup {
            id: group
        }

        Repeater {
            model: choices

            RadioButton {
                anchors.verticalCenter: parent.verticalCenter
                text: modelData.text
                exclusiveGroup: group
                checked: modelData.value === choice

                onCheckedChanged: {
                    if (checked && choice !== modelData.value)
                        choice = modelData.value
                }
            }
        }

        Row {
            id: extras

            spacing: 5
        }
    }
}
