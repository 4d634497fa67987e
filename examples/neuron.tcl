# Loads a real traced neuron (a CA1 pyramidal cell, data/CA1.swc, licence in
# data/LICENSE), prints its size and total length, and saves it as KorvaMesh
# and as SWC into the current directory.
# Run: korva examples/neuron.tcl   (scripts/run runs it after the demo)

set here [file dirname [file normalize [info script]]]
set neuron [load [file join $here data CA1.swc]]

puts "$neuron: [$neuron getNumVertices] vertices, [$neuron getNumEdges] edges, [$neuron getNumEdgePoints] points"
puts [format "total length: %.2f" [$neuron totalLength]]

save KorvaMesh $neuron CA1.kxm
save SWC $neuron CA1-export.swc
puts "saved CA1.kxm and CA1-export.swc in [pwd]"

# The SWC export describes the same cell: same length.
set back [load CA1-export.swc]
puts [format "reloaded %s: total length %.2f" $back [$back totalLength]]
