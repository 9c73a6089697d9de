#pragma once

#include <memory>

#include <QRectF>
#include <QSize>

#include <zimg.h>

namespace tarnovel {

/// What a Lanczos-3 graph from 8-bit or 16-bit planes to 16-bit planes depends on.
struct GraphKey {
    zimg_color_family_e family = ZIMG_COLOR_GREY;
    QSize source;
    unsigned subsampleX = 0;
    unsigned subsampleY = 0;
    QRectF active;
    QSize target;
    bool deepSource = false;

    bool operator==(const GraphKey &) const = default;
};

/// A resampling graph. It holds no state of a run, so that threads may share one.
class FilterGraph {
public:
    /// The graph for the key, built (12–17 ms) or found among the last few. Throws std::bad_alloc.
    static std::shared_ptr<const FilterGraph> forKey(const GraphKey &key);

    explicit FilterGraph(zimg_filter_graph *graph);
    const zimg_filter_graph *get() const { return m_graph.get(); }
    size_t temporaryBytes() const { return m_temporaryBytes; }
    unsigned inputRows() const { return m_inputRows; }
    unsigned outputRows() const { return m_outputRows; }

private:
    struct Free {
        void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
    };
    std::unique_ptr<zimg_filter_graph, Free> m_graph;
    size_t m_temporaryBytes = 0;
    unsigned m_inputRows = 0;
    unsigned m_outputRows = 0;
};

} // namespace tarnovel
