#include "meshrake/plot_data/zone.hpp"

#include "meshrake/plot_data/writer_functions.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace plot_data {

void tecplotWriteZoneFE(std::string_view title, std::string_view solutionTime,
                        int connectivityShareZone, model::Domain& domain) {
    writer().writeZone(StringHelpers::trimRight(title), StringHelpers::trimRight(solutionTime),
                       connectivityShareZone, domain);
    domain.dataSet.nextZone = {};
}

void tecplotWriteConnectivity(model::Domain& domain) {
    writer().writeConnectivity(domain);
}

void tecplotEndZone(model::Domain& domain) {
    writer().endZone(domain);
}

} // namespace plot_data
