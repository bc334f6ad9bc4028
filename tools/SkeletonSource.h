// SkeletonSource - one skeleton tracker's joints turned into the library's,
// as python/pelmora/sources.json (embedded at build time) describes them: the
// library joints each comes from (one source joint, or a weighted mean), the
// units, the axis signs, the origin and the names a mirrored view swaps. The
// Python package reads the same table, so both convert a frame alike.
// The table is read once, on first use; the sources are immutable after
// that, so they are safe to share between threads.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "pelmora.h"

namespace PelmoraTool {

class SkeletonSource {
public:
    using Point = std::array<double, 3>;  // in the source's own units and axes

    // The source of that name in the table; throws std::runtime_error for
    // an unknown one.
    static const SkeletonSource& Named(const std::string& name);

    const std::string& Name() const { return m_Name; }
    // The source's joint names, in its own order.
    const std::vector<std::string>& Joints() const { return m_Joints; }
    // The library joint types a converted frame holds, in slot order.
    const std::vector<int32_t>& LibraryJoints() const { return m_LibraryTypes; }
    // The library joint a source joint becomes unchanged; 0 when none.
    int32_t LibraryJointOf(const std::string& sourceJoint) const;

    // Turns one frame (a point per source joint, in source order) into the
    // library's slots. Throws std::runtime_error, leaving `library` unspecified,
    // for a frame the library must not see: the wrong number of joints, a
    // coordinate that is not finite, every joint at 0 (an untracked body),
    // a library joint that is not in front of the camera.
    void Convert(const std::vector<Point>& source, bool mirrored, std::vector<Point3>& library) const;

private:
    struct Term {
        size_t joint;  // index into the source's joints
        double weight; // divided by the slot's sum of weights
    };

    SkeletonSource() = default;
    static std::vector<SkeletonSource> ReadTable();
    void Check(const std::vector<Point>& source) const;
    Point3 Slot(size_t slot, const std::vector<Point>& source, bool mirrored) const;

    std::string m_Name;
    std::vector<std::string> m_Joints;
    std::vector<int32_t> m_LibraryTypes;
    std::vector<std::vector<Term>> m_Slots;  // per library slot
    std::vector<size_t> m_MirrorTwin;        // per source joint: the joint a mirrored view names it
    double m_Scale = 1.0;
    Point m_Axes{{1.0, 1.0, 1.0}};
    Point m_Offset{{0.0, 0.0, 0.0}};
};

}  // namespace PelmoraTool
