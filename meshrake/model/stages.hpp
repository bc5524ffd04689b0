#pragma once

// Stages of a run, for a program that measures them (bench/main_stages.cpp). A run marks where a
// stage begins; without an observer a mark costs a comparison.
namespace stages {

enum class Stage {
    description, // arguments, description files, control file; what no other stage has
    mesh,        // coordinates and element lists
    truncation,
    reading,        // of result files
    derivedColumns, // declaring and computing columns, apart from the reads
    formatting,     // zones, apart from the writes of the system
    writing,
    products // comparisons and plots after the last output time
};

// A stage ends the current one, which continues at the end of the scope.
class Scope {
public:
    explicit Scope(Stage stage);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    Stage before;
};

// Called before each change with the stage that ends or pauses; null: not measured.
using Observer = void (*)(Stage);
void observe(Observer observer);
void reset();

} // namespace stages
