#pragma once

#include "tests/memory_failure/memory_sweep.h"

#include <utility>

namespace zvk::Pelkraft::TestSupport {

// A trial of two actions on a scene, which has GetState().
template <typename Scene>
class SceneTrial final : public Trial
{
public:
    using Action = void (*)(Scene&);
    using Question = bool (*)(Scene&);

    SceneTrial(Action newRun, Question newIsDone) : run(newRun), isDone(newIsDone) {}

    void Run() override { run(scene); }
    Bytes GetState() override { return scene.GetState(); }
    bool IsDone() override { return isDone(scene); }

private:
    Scene scene;
    Action run;
    Question isDone;
};

template <typename Scene>
Operation OperationOn(const char* name, typename SceneTrial<Scene>::Action run,
                      typename SceneTrial<Scene>::Question isDone)
{
    Operation operation;
    operation.name = name;
    operation.prepare = [=] { return std::make_unique<SceneTrial<Scene>>(run, isDone); };
    return operation;
}

} // namespace zvk::Pelkraft::TestSupport
