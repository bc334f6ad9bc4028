#include "tools/RecordingWriter.h"

#include <ostream>
#include <stdexcept>

#include "tools/Csv.h"
#include "tools/Numbers.h"

namespace PelmoraTool {

void RecordingWriter::Begin(const std::vector<int32_t>& joints, bool hasLabels) {
    Recording::CheckDistinct(joints);
    m_Joints = joints;
    m_HasLabels = hasLabels;
    m_Out << "time_ms,player";
    for (int32_t type : joints) {
        for (const char* axis : Recording::kAxes) m_Out << ',' << Recording::JointName(type) << axis;
    }
    m_Out << (hasLabels ? ",label\n" : "\n");
}

void RecordingWriter::Write(const RecordedFrame& frame) {
    Recording::CheckTime(frame.timeMs, m_LastMs);
    m_LastMs = frame.timeMs;
    ++m_Frames;
    m_Out << Numbers::Format(frame.timeMs) << ',' << frame.player;
    for (const Point3& joint : frame.joints) {
        m_Out << ',' << Numbers::Format(joint.x) << ',' << Numbers::Format(joint.y) << ',' << Numbers::Format(joint.z);
    }
    if (m_HasLabels) m_Out << ',' << Csv::Quote(frame.label);
    m_Out << '\n';
}

}  // namespace PelmoraTool
