# Builds two small spatial graphs with attributes and a label group, merges
# one into the other, bakes a transformation into the coordinates and prints
# what came out. Run: korva examples/graph_basics.tcl
# The graph commands are described in docs/spatialgraph-commands.md.

# Makes a little neuron: a soma at the origin with an axon and a dendrite.
# Every graph gets the same attributes, so that graphs can be merged.
proc makeNeuron {label dx} {
    set g [create KxSpatialGraph $label]
    set soma [$g addVertex $dx 0 0]
    set axonEnd [$g addVertex [expr {$dx + 10}] 0 0]
    set dendriteEnd [$g addVertex $dx 6 1]
    # Edges run from vertex to vertex through the inner points given.
    set axon [$g addEdge $soma $axonEnd [expr {$dx + 5}] 1 0]
    set dendrite [$g addEdge $soma $dendriteEnd [expr {$dx + 1}] 2 0 [expr {$dx + 1}] 4 1]

    $g addAttribute thickness POINT float
    foreach {edge radii} [list $axon {1.0 0.6 0.4} $dendrite {1.0 0.8 0.5 0.3}] {
        set p 0
        foreach r $radii {
            $g setValue POINT thickness $edge $p $r
            incr p
        }
    }
    $g addAttribute Diameter VERTEX float
    $g setValue VERTEX Diameter $soma 8.0

    # A label group "Neuron" with the labels Axon and Dendrite tags the edges.
    $g addLabelGroup Neuron EDGE
    $g setValue EDGE Neuron $axon [$g addLabel Neuron 0 Axon 1 0 0]
    $g setValue EDGE Neuron $dendrite [$g addLabel Neuron 0 Dendrite 0 0 1]
    return $g
}

set first [makeNeuron neuron 0]
set second [makeNeuron neighbour 20]
puts "[$first info]"

# Merging appends the neighbour's vertices and edges with their values.
$first merge $second
puts "After merge:\n[$first info]"
if {![$first isConsistent]} {
    error "the merged graph is not consistent"
}

# Scale by 2 and move by (0, 0, 5), then bake that into the coordinates.
$first setTransform 2 0 0 0  0 2 0 0  0 0 2 0  0 0 5 1
set expected [$first getBoundingBox transformed]
$first applyTransform
set box [$first getBoundingBox]
puts "Bounding box after applyTransform: $box"
if {$box ne $expected} {
    error "applyTransform moved the box to $box instead of $expected"
}
puts "[$first info]"
puts "Label groups:\n[$first parameters]"
