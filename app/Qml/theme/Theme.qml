pragma Singleton

import QtQuick 2.15

// The one place for colours, sizes and fonts. Surfaces and text come from the application palette,
// so that widgets and screens cannot drift apart; what the palette has no role for stands here.
QtObject {
    id: theme

    readonly property SystemPalette palette: SystemPalette { colorGroup: SystemPalette.Active }

    // Surfaces, from the deepest to the nearest.
    readonly property color wellColor: palette.base
    readonly property color trenchColor: palette.dark
    readonly property color windowColor: palette.window
    readonly property color panelColor: Qt.lighter(palette.window, 1.14)
    readonly property color controlColor: palette.button
    readonly property color controlHoverColor: palette.midlight
    readonly property color controlPressedColor: palette.dark
    readonly property color outlineColor: palette.midlight
    readonly property color outlineHoverColor: palette.light
    readonly property color dimmingColor: Qt.rgba(0, 0, 0, 0.6)

    readonly property color textColor: palette.text
    readonly property color quietTextColor: "#a9b0b6"
    // At 4.5 to 1 on every surface but the controls.
    readonly property color disabledTextColor: "#949a9f"

    // The accent marks what can be acted on or is selected, and nothing else.
    readonly property color accentColor: "#35b6d6"
    readonly property color accentHoverColor: Qt.lighter(accentColor, 1.12)
    readonly property color accentPressedColor: Qt.darker(accentColor, 1.2)
    readonly property color accentTextColor: "#06181d"
    readonly property color selectionColor: Qt.rgba(accentColor.r, accentColor.g, accentColor.b, 0.35)
    readonly property color focusColor: accentColor

    // States. The lamp colours are those of the connection lamp.
    readonly property color lampOnColor: "#00FF6B"
    readonly property color lampOffColor: "red"
    readonly property color successColor: "#5fd38d"
    readonly property color warningColor: "#e8b339"
    readonly property color errorColor: "#ff7b72"
    readonly property color pendingColor: warningColor

    // The lines of a plot, told apart on the darkest surface. None of them is the accent.
    readonly property var lineColors: ["#58b4f0", "#f0ab3c", "#5fd38d", "#f07a9a", "#b394f5",
                                       "#dcd65c", "#f08a52", "#4fd6c0", "#d884d8", "#a6c663",
                                       "#8fa2ff", "#cfd4d8"]
    readonly property color gridLineColor: "#34383b"

    // Every distance is a multiple of the grid.
    readonly property int grid: 4
    readonly property int hairline: 1
    readonly property int focusWidth: 2
    readonly property int gapTiny: grid
    readonly property int fieldPadding: 3 * grid
    readonly property int gap: 2 * grid
    readonly property int gapWide: 4 * grid
    readonly property int radius: grid
    readonly property int radiusSmall: grid / 2

    readonly property int controlHeight: 8 * grid
    readonly property int smallControlHeight: 6 * grid
    readonly property int fieldWidth: 50 * grid
    readonly property int buttonWidth: 24 * grid
    readonly property int iconSize: 5 * grid
    readonly property int smallIconSize: 4 * grid
    readonly property int lampSize: 3 * grid
    readonly property int barHeight: 14 * grid
    readonly property int histogramBarWidth: 16 * grid
    readonly property int scrollBarWidth: 2 * grid
    readonly property int dialogWidth: 120 * grid
    readonly property int noticeLimit: 4
    readonly property int toolTipWidth: 80 * grid
    // The areas of the window.
    readonly property int windowWidth: 325 * grid
    readonly property int windowHeight: 200 * grid
    readonly property int topBarHeight: 17 * grid
    readonly property int linkStripHeight: 9 * grid
    readonly property int consoleWidth: 100 * grid
    readonly property int logHeight: 47 * grid
    readonly property int stripWidth: 9 * grid
    // An area that is open is never smaller than this.
    readonly property int pageMinimumWidth: 140 * grid
    readonly property int pageMinimumHeight: 70 * grid
    readonly property int consoleMinimumWidth: 85 * grid
    readonly property int logMinimumHeight: 28 * grid
    readonly property int findFieldWidth: 50 * grid
    readonly property int logSearchWidth: 38 * grid
    readonly property int serialPanelWidth: 125 * grid
    // The widths of fields and captions that are no plain fieldWidth.
    readonly property int captionWidth: 42 * grid
    // A page's rows: the field, the unit behind it, and how wide a column of them has to be at least.
    readonly property int rowFieldWidth: 44 * grid
    readonly property int unitWidth: 11 * grid
    readonly property int pageColumnWidth: 142 * grid
    readonly property int serialCaptionWidth: 29 * grid
    readonly property int serialChoiceWidth: 38 * grid
    readonly property int modelFieldWidth: 34 * grid
    readonly property int addressFieldWidth: 34 * grid
    readonly property int numberFieldWidth: 20 * grid
    readonly property int portFieldWidth: 46 * grid
    readonly property int portListWidth: 100 * grid
    // The monitor: the values beside the plot, and the columns of their numbers.
    readonly property int monitorPanelWidth: 92 * grid
    readonly property int monitorNowWidth: 14 * grid
    readonly property int monitorRangeWidth: 12 * grid
    readonly property int distributionHeight: 27 * grid
    readonly property int distributionTextWidth: 52 * grid
    // The heights of a page's rows: the caption of a group, a plain one, and a choice that needs room.
    readonly property int groupHeadHeight: 7 * grid
    readonly property int rowHeight: 35
    readonly property int tallRowHeight: 80

    // What stands where a value would, as long as the lidar has not told it.
    readonly property string unreadText: "\u2014"

    readonly property string fontFamily: Qt.application.font.family
    readonly property string monospaceFamily: "monospace"
    readonly property int captionSize: 12
    readonly property int bodySize: 14
    readonly property int titleSize: 16
    readonly property int headlineSize: 20
    readonly property font captionFont: Qt.font({ family: fontFamily, pixelSize: captionSize })
    readonly property font bodyFont: Qt.font({ family: fontFamily, pixelSize: bodySize })
    readonly property font captionBoldFont: Qt.font({ family: fontFamily, pixelSize: captionSize, bold: true })
    readonly property font boldFont: Qt.font({ family: fontFamily, pixelSize: bodySize, bold: true })
    readonly property font titleFont: Qt.font({ family: fontFamily, pixelSize: titleSize, bold: true })
    readonly property font headlineFont: Qt.font({ family: fontFamily, pixelSize: headlineSize, bold: true })
    readonly property font codeFont: Qt.font({ family: monospaceFamily, pixelSize: captionSize + 1 })

    readonly property int toolTipDelayMs: 600
    readonly property int outcomeMs: 12000
    // Long enough to type on, short enough to seem at once.
    readonly property int searchPauseMs: 150
    readonly property int fadeMs: 120
    readonly property int dragScrollMs: 30
    readonly property int noticeMs: 6000
    readonly property int busyAfterMs: 150
    readonly property int spinMs: 1200
}
