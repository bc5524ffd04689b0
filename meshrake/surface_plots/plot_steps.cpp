#include "meshrake/surface_plots/plot_steps.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "meshrake/plot_data/unit_labels.hpp"
#include "meshrake/truncation/common_truncation.hpp"
#include "meshrake/truncation/multi_truncation.hpp"
#include "tvncommon/diagnostics/error.hpp"

namespace surface_plots {

using model::Domain;
using model::run;
using model::write_string;

void checkSurface(const Domain& olf, std::string_view plot) {
    if (olf.nodeCount > 0 && olf.elementCount > 0) return;
    error::input_error("The " + std::string(plot) +
                       " divides by the nodes and elements of the olf domain, which has " +
                       std::to_string(olf.nodeCount) + " nodes and " +
                       std::to_string(olf.elementCount) + " elements.\nFile: " +
                       model::problemFile(olf.nodeCount > 0 ? "elements_olf" : "coordinates_olf"));
}

void truncateForPlot(Domain& domain, const Domain& pm) {
    if (!domain.nodeIncluded.empty()) return; // truncated by the run
    if (model::hasOwnNodes(domain))
        truncation::multiTruncate(domain, pm);
    else
        truncation::commonTruncate(domain, pm);
}

void openPlot(std::string_view plot, std::string_view file,
              std::span<const std::string_view> variables, Domain& domain) {
    const std::string name = model::problemFile(file);
    write_string(" ");
    write_string(std::string(48, '-'));
    write_string(plot);
    write_string("Creating Tecplot file " + name + std::string(plot_data::plotFileExtension()));
    plot_data::tecplotInit(domain);
    for (const std::string_view variable : variables) {
        const std::int32_t number = plot_data::tecplotVarAdd(variable, domain);
        plot_data::tecplotDataType(model::DataType::real8, domain);
        plot_data::tecplotVarUnitsAdd(variable, number, "L", domain);
    }
    plot_data::tecplotFileOpen(name, run.titleLines.front(), domain);
    plot_data::tecplotVarUnitsWrite(domain);
}

} // namespace surface_plots
