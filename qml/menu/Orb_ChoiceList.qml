import QtQuick 2.0

// A list of the bar that sets one value: `choices` holds a label and a value for each row.
Orb_BarList {
    id: orb_choiceList

    property alias choices: repeater.model
    property int current: 0

    signal chosen(int value)

    Repeater {
        id: repeater

        Orb_Menu_Item {
            label: modelData.label
            currentItem: modelData.value === orb_choiceList.current

            function action() {
                orb_choiceList.chosen(modelData.value)
            }
        }
    }
}
