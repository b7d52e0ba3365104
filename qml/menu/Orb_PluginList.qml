import QtQuick 2.0

// The list of video backends, one of which will play from the next start on.
Orb_BarList {
    title: "Video Plugin"

    Component.onCompleted: {
        var plugins = orbVideoPlugin.pluginsList()
        for (var i = 0; i < plugins.length; ++i)
            pluginsModel.append({ value: plugins[i][0], label: plugins[i][1],
                                  description: plugins[i][2] })
    }

    ListModel {
        id: pluginsModel
    }

    Repeater {
        model: pluginsModel

        Orb_PluginItem {
            label: model.label
            description: model.description
            chosen: model.value === orbVideoPlugin.currentPlugin

            onPressed: orbVideoPlugin.currentPlugin = model.value
        }
    }
}
