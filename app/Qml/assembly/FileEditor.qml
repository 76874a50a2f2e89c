import QtQuick 2.15

// The editor of a page's firmware row.
UpgradePanel {
    property var row

    upgrade: row.upgrade
    onStartWanted: upgrade.start(row.level1, row.level2, row.level3)
}
