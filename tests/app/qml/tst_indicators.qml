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
    Component {
        id: histogramComponent
        Histogram { width: 300; height: 200; title: "Temperatures" }
    }

    function test_loading_is_seen_only_while_it_runs() {
        const loading = createTemporaryObject(loadingComponent, testCase);
        verify(!loading.visible);
        loading.running = true;
        verify(loading.visible);
        verify(!findChild(loading, "progressTrack").visible);
        compare(loading.Accessible.name, "Connecting");
    }

    function test_known_progress_is_a_bar_within_its_track_data() {
        return [{ tag: "none", progress: 0, share: 0 }, { tag: "half", progress: 0.5, share: 0.5 },
                { tag: "all", progress: 1, share: 1 }, { tag: "beyond", progress: 1.7, share: 1 }];
    }

    function test_known_progress_is_a_bar_within_its_track(data) {
        const loading = createTemporaryObject(loadingComponent, testCase,
                                              { running: true, progress: data.progress });
        const track = findChild(loading, "progressTrack");
        const bar = findChild(loading, "progressBar");
        verify(track.visible);
        fuzzyCompare(bar.width, Math.max(bar.height, track.width * data.share), 0.5);
    }

    function heights(histogram) {
        const result = [];
        for (let i = 0; i < histogram.values.length; ++i)
            result.push(findChild(findChild(histogram, "bar" + i), "body").height);
        return result;
    }

    function test_bars_are_proportional_to_their_values() {
        const histogram = createTemporaryObject(histogramComponent, testCase,
                                                { values: [10, 20, 40, 0, -5] });
        const bars = heights(histogram);
        fuzzyCompare(bars[1], 2 * bars[0], 0.5);
        fuzzyCompare(bars[2], 4 * bars[0], 0.5);
        compare(bars[3], bars[4]);
        verify(bars[3] < bars[0]);
    }

    function test_a_given_maximum_bounds_the_bars() {
        const histogram = createTemporaryObject(histogramComponent, testCase,
                                                { values: [50, 100, 500], maximum: 100 });
        const bars = heights(histogram);
        fuzzyCompare(bars[1], 2 * bars[0], 0.5);
        compare(bars[2], bars[1]);
    }

    function test_nothing_to_draw_is_no_fault() {
        const histogram = createTemporaryObject(histogramComponent, testCase);
        compare(heights(histogram).length, 0);
        histogram.values = [0, 0];
        compare(heights(histogram).length, 2);
    }
}
