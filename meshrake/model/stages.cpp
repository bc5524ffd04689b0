#include "meshrake/model/stages.hpp"

#include <utility>

namespace stages {

namespace {

struct State {
    Observer observer = nullptr;
    Stage current = Stage::description;
};
State state;

void change(Stage stage) {
    if (state.observer) state.observer(state.current);
    state.current = stage;
}

} // namespace

Scope::Scope(Stage stage) : before(state.current) {
    change(stage);
}

Scope::~Scope() {
    change(before);
}

void observe(Observer observer) {
    state.observer = observer;
}

void reset() {
    state.current = Stage::description;
}

} // namespace stages
