#pragma once

#include "editor/render/CompositionRasterizer.h"

#include <random>

namespace framora {

/// Draws whole compositions from a seed, the same ones on every machine: every kind of background, frame,
/// scene, text, effect, layout and map, in the preview and in the export.
class RandomComposition {
public:
    explicit RandomComposition(unsigned seed);

    const Composition& composition() const { return m_composition; }
    const CompositionRasterizer::Viewport& viewport() const { return m_viewport; }

private:
    double between(double low, double high);
    bool chance(double share) { return between(0, 1) < share; }
    int upTo(int count) { return int(m_engine() % unsigned(count)); }
    template <class E> E any() { return allCases<E>()[std::size_t(upTo(int(allCases<E>().size())))]; }
    Color color();
    QList<Color> colors(int atLeast);
    QImage picture(int width, int height);
    void setBackground();
    void setMockup();
    void setPlace();
    void setScene();
    void setTexts();

    std::mt19937 m_engine;
    Composition m_composition;
    CompositionRasterizer::Viewport m_viewport;
};

} // namespace framora
