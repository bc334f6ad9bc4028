#include "tools/SkeletonSource.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "tools/Recording.h"

namespace PelmoraTool {

// python/pelmora/sources.json, embedded by CMake (SourceTableText.cpp).
extern const char* const kSourceTableText;

namespace {

using nlohmann::json;

std::runtime_error TableError(const std::string& what) { return std::runtime_error("the skeleton source table: " + what); }

size_t IndexOf(const std::vector<std::string>& names, const std::string& name) {
    for (size_t k = 0; k < names.size(); ++k) {
        if (names[k] == name) return k;
    }
    throw TableError("no joint \"" + name + "\"");
}

// The name a mirrored view gives the joint: left and right words swapped.
std::string MirrorName(std::string name, const std::string& left, const std::string& right) {
    if (size_t at = name.find(left); at != std::string::npos) return name.replace(at, left.size(), right);
    if (size_t at = name.find(right); at != std::string::npos) return name.replace(at, right.size(), left);
    return name;
}

SkeletonSource::Point ReadPoint(const json& values) { return {values.at(0).get<double>(), values.at(1).get<double>(), values.at(2).get<double>()}; }

std::string Metres(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f m", static_cast<double>(value));
    return text;
}

}  // namespace

std::vector<SkeletonSource> SkeletonSource::ReadTable() {
    std::vector<SkeletonSource> sources;
    try {
        const json table = json::parse(kSourceTableText);
        for (const json& entry : table.at("sources")) {
            SkeletonSource source;
            source.m_Name = entry.at("name").get<std::string>();
            source.m_Joints = entry.at("joints").get<std::vector<std::string>>();
            source.m_Scale = entry.at("metres_per_unit").get<double>();
            source.m_Axes = ReadPoint(entry.at("axes"));
            source.m_Offset = ReadPoint(entry.at("offset_m"));
            const auto mirror = entry.at("mirror_names").get<std::vector<std::string>>();
            for (const std::string& joint : source.m_Joints)
                source.m_MirrorTwin.push_back(IndexOf(source.m_Joints, MirrorName(joint, mirror.at(0), mirror.at(1))));
            for (const json& slot : entry.at("library")) {
                const int32_t type = Recording::JointType(slot.at(0).get<std::string>());
                if (type == 0) throw TableError("no library joint \"" + slot.at(0).get<std::string>() + "\"");
                source.m_LibraryTypes.push_back(type);
                std::vector<Term> terms;
                double sum = 0.0;
                const json from = slot.at(1).is_string() ? json{{slot.at(1).get<std::string>(), 1.0}} : slot.at(1);
                for (const auto& [joint, weight] : from.items()) {
                    terms.push_back({IndexOf(source.m_Joints, joint), weight.get<double>()});
                    sum += terms.back().weight;
                }
                if (sum == 0.0) throw TableError(source.m_Name + " weighs its " + slot.at(0).get<std::string>() + " by nothing");
                for (Term& term : terms) term.weight /= sum;
                source.m_Slots.push_back(terms);
            }
            Recording::CheckDistinct(source.m_LibraryTypes);
            sources.push_back(source);
        }
    } catch (const json::exception& error) {
        throw TableError(error.what());
    }
    return sources;
}

const SkeletonSource& SkeletonSource::Named(const std::string& name) {
    static const std::vector<SkeletonSource> sources = ReadTable();
    for (const SkeletonSource& source : sources) {
        if (source.m_Name == name) return source;
    }
    throw std::runtime_error("no skeleton source \"" + name + "\"");
}

int32_t SkeletonSource::LibraryJointOf(const std::string& sourceJoint) const {
    for (size_t slot = 0; slot < m_Slots.size(); ++slot) {
        if (m_Slots[slot].size() == 1 && m_Joints[m_Slots[slot][0].joint] == sourceJoint) return m_LibraryTypes[slot];
    }
    return 0;
}

void SkeletonSource::Check(const std::vector<Point>& source) const {
    if (source.size() != m_Joints.size())
        throw std::runtime_error("expected " + std::to_string(m_Joints.size()) + " joints, found " + std::to_string(source.size()));
    bool tracked = false;
    for (size_t joint = 0; joint < source.size(); ++joint) {
        for (double value : source[joint]) {
            if (!std::isfinite(value)) throw std::runtime_error("joint " + m_Joints[joint] + " is not finite");
            tracked = tracked || value != 0.0;
        }
    }
    if (!tracked) throw std::runtime_error("every joint is at 0: an untracked body");
}

Point3 SkeletonSource::Slot(size_t slot, const std::vector<Point>& source, bool mirrored) const {
    Point sum{{0.0, 0.0, 0.0}};
    for (const Term& term : m_Slots[slot]) {
        Point point = source[mirrored ? m_MirrorTwin[term.joint] : term.joint];
        if (mirrored) point[0] = -point[0];
        for (size_t axis = 0; axis < 3; ++axis) sum[axis] += term.weight * point[axis];
    }
    for (size_t axis = 0; axis < 3; ++axis) sum[axis] = m_Axes[axis] * m_Scale * sum[axis] + m_Offset[axis];
    const Point3 joint{static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2])};
    if (!std::isfinite(joint.x) || !std::isfinite(joint.y) || !std::isfinite(joint.z))
        throw std::runtime_error(Recording::JointName(m_LibraryTypes[slot]) + " is beyond the range of a 32-bit float");
    if (!(joint.z > 0.0f))
        throw std::runtime_error(Recording::JointName(m_LibraryTypes[slot]) + " is at depth " + Metres(joint.z) +
                                 ", not in front of the camera");
    return joint;
}

void SkeletonSource::Convert(const std::vector<Point>& source, bool mirrored, std::vector<Point3>& library) const {
    Check(source);
    library.resize(m_Slots.size());
    for (size_t slot = 0; slot < m_Slots.size(); ++slot) library[slot] = Slot(slot, source, mirrored);
}

}  // namespace PelmoraTool
