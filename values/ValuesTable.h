// ValuesTable - a player's pool of named values: the fixed standard pool
// (25 joint positions, 25 joint velocities, "GestureTime", "SegmentTime"),
// the values a configuration declares, and a cache of literal constants.
// Thread-safety: none. A pool is filled while the configuration loads and is
// then used only by the thread that updates its player.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "values/BaseValue.h"

namespace PelmoraLib {

class PELMORA_API ValuesTable {
public:
    // The failure index: the 32-bit all-ones pattern in a 64-bit result.
    static const uint64_t kInvalidIndex = 0xFFFFFFFFull;
    static const size_t kJointCount = 25;
    static const uint64_t kFirstVelocityIndex = 25;
    static const uint64_t kGestureTimeIndex = 50;
    static const uint64_t kSegmentTimeIndex = 51;

    ValuesTable();
    virtual ~ValuesTable();
    ValuesTable(const ValuesTable&) = delete;
    ValuesTable& operator=(const ValuesTable&) = delete;

    uint64_t CreateValue(BaseValue::Type type, const char* name, const char* initial);
    bool HasValues(const char* name) const;
    BaseValue* GetValue(const char* name) const;
    BaseValue* GetValue(size_t index) const;
    uint64_t GetValueIndex(const char* name) const;
    // The constant a literal text stands for, made on first use and shared by
    // every use of the same text. Constants are never written: gesture
    // programs keep copies of the ones they compare with.
    BaseValue* GetConstValue(const char* literal);
    // Whether `value` is one of this table's literal constants.
    bool IsConstant(const BaseValue* value) const;
    size_t GetValueCount() const { return m_Values.size(); }
    void Clear();
    // Changes whenever a value is added or the table is cleared, to a number
    // no table of the process had before: whoever keeps what it looked up by
    // index can tell cheaply whether that still stands.
    uint64_t GetGeneration() const { return m_Generation; }

    // The joint names without their "P_" / "V_" prefix, by skeleton type 0-24.
    static const char* JointName(size_t joint);

private:
    void AddValue(const std::string& name, BaseValue* value);
    void Touch();

    std::map<std::string, uint64_t> m_IndexMap;
    std::vector<BaseValue*> m_Values;
    std::map<std::string, BaseValue*> m_ConstValues;
    uint64_t m_Generation = 0;
};

}  // namespace PelmoraLib
