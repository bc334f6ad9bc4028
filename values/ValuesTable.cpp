#include "values/ValuesTable.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "values/FloatValue.h"
#include "values/IntValue.h"
#include "values/Vector3Value.h"

namespace PelmoraLib {

namespace {

const char* const kJointNames[ValuesTable::kJointCount] = {
    "Invalid",    "Head",       "Neck",          "Torso",         "Waist",          "LeftCollar",     "LeftShoulder",
    "LeftElbow",  "LeftWrist",  "LeftHand",      "LeftFingertip", "RightCollar",    "RightShoulder",  "RightElbow",
    "RightWrist", "RightHand",  "RightFingertip", "LeftHip",      "LeftKnee",       "LeftAnkle",      "LeftFoot",
    "RightHip",   "RightKnee",  "RightAnkle",    "RightFoot"};

const char* OrEmpty(const char* text) { return text ? text : ""; }

void ReadVector(Vector3Value* vector, const char* text) {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    sscanf(text, "%f,%f,%f", &x, &y, &z);
    vector->Set(x, y, z);
}

}  // namespace

const char* ValuesTable::JointName(size_t joint) { return joint < kJointCount ? kJointNames[joint] : ""; }

ValuesTable::ValuesTable() {
    m_Values.reserve(128);
    for (const char* prefix : {"P_", "V_"}) {
        for (const char* joint : kJointNames) {
            const std::string name = std::string(prefix) + joint;
            AddValue(name, new Vector3Value(name.c_str()));
        }
    }
    AddValue("GestureTime", new IntValue("GestureTime"));
    AddValue("SegmentTime", new IntValue("SegmentTime"));
}

ValuesTable::~ValuesTable() { Clear(); }

void ValuesTable::AddValue(const std::string& name, BaseValue* value) {
    m_Values.push_back(value);
    m_IndexMap[name] = m_Values.size() - 1;
    Touch();
}

void ValuesTable::Touch() {
    static std::atomic<uint64_t> generations{0};
    m_Generation = generations.fetch_add(1, std::memory_order_relaxed) + 1;
}

uint64_t ValuesTable::CreateValue(BaseValue::Type type, const char* name, const char* initial) {
    if (HasValues(name)) return kInvalidIndex;
    const bool hasInitial = initial && initial[0] != '\0';
    BaseValue* value = nullptr;
    switch (type) {
        case BaseValue::Int: {
            IntValue* created = new IntValue(name);
            if (hasInitial) created->Set(atoi(initial));
            value = created;
            break;
        }
        case BaseValue::Float: {
            FloatValue* created = new FloatValue(name);
            if (hasInitial) created->Set(static_cast<float>(atof(initial)));
            value = created;
            break;
        }
        case BaseValue::Vector3: {
            Vector3Value* created = new Vector3Value(name);
            if (initial) ReadVector(created, initial);
            value = created;
            break;
        }
        case BaseValue::Quaternion:
            printf("Quaternion is not supported in this version.\n");
            break;
        default:
            break;
    }
    // A declaration takes its index even when nothing could be made for it.
    AddValue(OrEmpty(name), value);
    return m_Values.size() - 1;
}

bool ValuesTable::HasValues(const char* name) const { return m_IndexMap.count(OrEmpty(name)) != 0; }

BaseValue* ValuesTable::GetValue(const char* name) const {
    const auto found = m_IndexMap.find(OrEmpty(name));
    if (found == m_IndexMap.end()) {
        printf("%s is a undefine value!\n", OrEmpty(name));
        return nullptr;
    }
    if (found->second >= m_Values.size()) {
        printf("%s can't be found in pool, index: %d\n", OrEmpty(name), static_cast<int>(found->second));
        return nullptr;
    }
    return m_Values[found->second];
}

BaseValue* ValuesTable::GetValue(size_t index) const {
    if (index >= m_Values.size()) {
        printf("Index: %d can't be found in pool \n", static_cast<int>(index));
        return nullptr;
    }
    return m_Values[index];
}

uint64_t ValuesTable::GetValueIndex(const char* name) const {
    const auto found = m_IndexMap.find(OrEmpty(name));
    if (found == m_IndexMap.end()) {
        printf("%s is a undefine value!\n", OrEmpty(name));
        return kInvalidIndex;
    }
    return found->second;
}

BaseValue* ValuesTable::GetConstValue(const char* literal) {
    if (!literal) return nullptr;
    const auto cached = m_ConstValues.find(literal);
    if (cached != m_ConstValues.end()) return cached->second;

    int commas = 0, dots = 0;
    for (const char* c = literal; *c; ++c) {
        if (*c == ',') ++commas;
        if (*c == '.') ++dots;
    }
    BaseValue* value = nullptr;
    if (commas == 2) {
        Vector3Value* vector = new Vector3Value(literal);
        ReadVector(vector, literal);
        value = vector;
    } else if (dots > 0) {
        FloatValue* number = new FloatValue(literal);
        number->Set(static_cast<float>(atof(literal)));
        value = number;
    } else {
        IntValue* number = new IntValue(literal);
        number->Set(atoi(literal));
        value = number;
    }
    m_ConstValues[literal] = value;
    return value;
}

bool ValuesTable::IsConstant(const BaseValue* value) const {
    if (!value) return false;
    const auto cached = m_ConstValues.find(value->Name());
    return cached != m_ConstValues.end() && cached->second == value;
}

void ValuesTable::Clear() {
    for (BaseValue* value : m_Values) delete value;
    for (auto& constant : m_ConstValues) delete constant.second;
    m_Values.clear();
    m_IndexMap.clear();
    m_ConstValues.clear();
    Touch();
}

}  // namespace PelmoraLib
