import QtQuick 2.15
import QtTest 1.15
import "qrc:/Qml/assembly"

TestCase {
    id: testCase

    name: "Indicators"
    when: windowShown
    visible: true
    width: 600
    height: 300

    Component { id: loadingComponent; LoadingWidget { text: "Connecting" } }
    Component { id: histogramComponent; Histogram { width: 300; height: 200 } }

    function test_loading_is_seen_while_it_runs_and_keeps_its_bar_within_the_track() {
        const loading = createTemporaryObject(loadingComponent, testCase);
        verify(!loading.visible);
        loading.running = true;
        verify(loading.visible);
        const track = findChild(loading, "progressTrack");
        verify(!track.visible);
        for (const [progress, share] of [[0.5, 0.5], [1, 1], [1.7, 1]]) {
            loading.progress = progress;
            verify(track.visible);
            fuzzyCompare(findChild(loading, "progressBar").width, track.width * share, 0.5);
        }
    }

    // `shares` is what each bar has of the first one's height.
    function test_bars_are_proportional_to_their_values_data() {
        return [{ tag: "to the largest", values: [10, 20, 40], maximum: 0, shares: [1, 2, 4] },
                { tag: "a given maximum", values: [50, 100, 500], maximum: 100, shares: [1, 2, 2] },
                { tag: "below zero as zero", values: [0, -5, 0], maximum: 0, shares: [1, 1, 1] },
                { tag: "nothing", values: [], maximum: 0, shares: [] }];
    }

    function test_bars_are_proportional_to_their_values(data) {
        const histogram = createTemporaryObject(
            histogramComponent, testCase, { values: data.values, maximum: data.maximum });
        const height = i => findChild(findChild(histogram, "bar" + i), "body").height;
        data.shares.forEach((share, i) => fuzzyCompare(height(i), share * height(0), 0.5));
    }
}
