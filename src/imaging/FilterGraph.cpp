#include "imaging/FilterGraph.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace tarnovel {
namespace {

// An export in a run of equal photos, its preview, a thumbnail and the alpha of one.
constexpr size_t mostKeptGraphs = 6;

zimg_image_format format(const GraphKey &key, QSize size, zimg_pixel_type_e type)
{
    zimg_image_format made;
    zimg_image_format_default(&made, ZIMG_API_VERSION);
    made.width = static_cast<unsigned>(size.width());
    made.height = static_cast<unsigned>(size.height());
    made.pixel_type = type;
    made.depth = type == ZIMG_PIXEL_BYTE ? 8 : 16;
    made.color_family = key.family;
    made.matrix_coefficients = key.family == ZIMG_COLOR_RGB   ? ZIMG_MATRIX_RGB
                               : key.family == ZIMG_COLOR_YUV ? ZIMG_MATRIX_BT470_BG
                                                              : ZIMG_MATRIX_UNSPECIFIED;
    // Between two limited ranges the deeper sample is the shallower one times 256, exactly and fast; a full
    // range would be stretched by 257 in floating point. Nothing else here depends on the range.
    made.pixel_range = ZIMG_RANGE_LIMITED;
    made.chroma_location = ZIMG_CHROMA_CENTER;
    return made;
}

zimg_filter_graph *build(const GraphKey &key)
{
    zimg_image_format source = format(key, key.source, key.deepSource ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE);
    source.subsample_w = key.subsampleX;
    source.subsample_h = key.subsampleY;
    source.active_region.left = key.active.x();
    source.active_region.top = key.active.y();
    source.active_region.width = key.active.width();
    source.active_region.height = key.active.height();
    const zimg_image_format target = format(key, key.target, ZIMG_PIXEL_WORD);

    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
    parameters.filter_param_a = 3;
    parameters.resample_filter_uv = ZIMG_RESIZE_LANCZOS;
    parameters.filter_param_a_uv = 3;
    // Not the 64-byte variants: with them a target one pixel wide came out in wrong colours.
    parameters.cpu_type = ZIMG_CPU_AUTO;
    zimg_filter_graph *graph = zimg_filter_graph_build(&source, &target, &parameters);
    if (graph == nullptr) {
        throw std::bad_alloc();
    }
    return graph;
}

} // namespace

FilterGraph::FilterGraph(zimg_filter_graph *graph) : m_graph(graph)
{
    zimg_filter_graph_get_tmp_size(graph, &m_temporaryBytes);
    zimg_filter_graph_get_input_buffering(graph, &m_inputRows);
    zimg_filter_graph_get_output_buffering(graph, &m_outputRows);
}

std::shared_ptr<const FilterGraph> FilterGraph::forKey(const GraphKey &key)
{
    static std::mutex mutex;
    static std::vector<std::pair<GraphKey, std::shared_ptr<const FilterGraph>>> kept;
    const auto find = [&] {
        return std::find_if(kept.begin(), kept.end(), [&](const auto &entry) { return entry.first == key; });
    };
    {
        const std::lock_guard lock(mutex);
        if (const auto found = find(); found != kept.end()) {
            std::rotate(kept.begin(), found, found + 1);
            return kept.front().second;
        }
    }
    auto graph = std::make_shared<const FilterGraph>(build(key));
    const std::lock_guard lock(mutex);
    kept.insert(kept.begin(), {key, graph});
    kept.resize(std::min(kept.size(), mostKeptGraphs));
    return graph;
}

} // namespace tarnovel
