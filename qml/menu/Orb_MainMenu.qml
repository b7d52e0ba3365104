import QtQuick 2.0

// The menu of the bar. Where a row leads is its user's business.
Orb_BarList {
    id: orb_mainMenu

    signal projectionsWanted()
    signal headsetWanted()
    signal pluginsWanted()
    signal displayWanted()
    signal popupWanted(string qmlFile)

    title: "Menu"

    Orb_Menu_Item {
        label: "View Projection"

        function action() { projectionsWanted() }
    }

    Orb_Menu_Item {
        label: "Oculus Rift"
        shown: orbOculus.available

        function action() { headsetWanted() }
    }

    // There is no panel that it would lead to.
    Orb_Menu_Item {
        label: "Leap Motion"
        shown: false
    }

    Orb_Menu_Item {
        label: "Video Plugin"
        shown: orbVideoPlugin.pluginsList().length > 1

        function action() { pluginsWanted() }
    }

    Orb_Menu_Item {
        label: "UDP Communication"

        function action() { popupWanted("qrc:/qml/popup/PopupSoftwareCommunication.qml") }
    }

    Orb_Menu_Item {
        label: "Intel Wireless Display"
        shown: orbDisplay.isSupported()

        function action() { displayWanted() }
    }

    Orb_Menu_Item {
        label: "Open File/Stream"

        function action() { popupWanted("qrc:/qml/popup/PopupOpenFile.qml") }
    }

    Orb_Menu_Item {
        label: "Update"

        function action() { orbView.checkUpdate() }
    }

    Orb_Menu_Item {
        label: "Software Log"

        function action() { popupWanted("qrc:/qml/popup/PopupSoftwareLog.qml") }
    }

    Orb_Menu_Item {
        label: "About " + orbGlobalObject.getSoftwareName()

        function action() { popupWanted("qrc:/qml/popup/PopupAbout.qml") }
    }

    Orb_Menu_Item {
        label: "About Third Party"

        function action() { popupWanted("qrc:/qml/popup/PopupAboutThirdParty.qml") }
    }

    Orb_Menu_Item {
        label: "Online documentation"

        function action() { root.openAddress(orbGlobalObject.getDocumentationLink()) }
    }
}
