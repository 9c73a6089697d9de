#pragma once

#include <vector>

#include <QtGlobal>

namespace tarnovel {

/// The tooth of drawing paper. It lies still on the page: a stroke shows the same grain wherever the view
/// looks and at any scale, and the same one on every machine.
class PaperGrain {
public:
    static const PaperGrain &shared();

    /// Height of the paper, 0…1, at a place in reference coordinates.
    double height(double x, double y) const;

    /// How dark (0…255) graphite shows there when it is laid on this heavily (0…255): little of it catches on
    /// the heights alone.
    int graphite(int ink, double x, double y) const;

private:
    PaperGrain();
    double smooth(double x, double y) const;

    std::vector<float> m_heights;
};

} // namespace tarnovel
