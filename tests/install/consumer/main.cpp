// The installed C++ headers must compile on their own and the exported
// classes must link: read a skeleton value through PelmoraLib.
#include <cstdio>

#include <pelmora.hpp>

int main() {
    int32_t joints[1] = {PELMORA_JOINT_HEAD};
    GestureConfigParam param{};
    param.PlayerNum = 1;
    param.SkeletonNum = 1;
    param.SkeletonTypeArray = joints;
    InitPelmora(&param);
    PelmoraLib::IdentifyValues* pool = PelmoraLib::Pelmora::Get()->GetIdentifyValue(0);
    const bool ok = pool && pool->GetValueIndex("P_Head") == PELMORA_JOINT_HEAD &&
                    pool->GetValue("P_Head")->GetType() == PelmoraLib::BaseValue::Vector3;
    ClosePelmora();
    if (!ok) return 1;
    int major = 0, minor = 0, patch = 0;
    PelmoraVersion(&major, &minor, &patch);
    std::printf("Pelmora64 %d.%d.%d ok\n", major, minor, patch);
    return 0;
}
