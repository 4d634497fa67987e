# A small neuron whose edges carry a "thickness" per point, for rendering:
#   korva render examples/render_tubes.tcl neuron.png
# draws it as tubes (radius = thickness) into neuron.png without any display;
# KORVA_LEGACY_TUBES=1 draws the fallback tubes made of faces instead.
# As a plain script it only builds the graph and prints its summary.

set g [create KxSpatialGraph neuron]
set soma [$g addVertex 0 0 0]
set a [$g addVertex 10 0 0]
set b [$g addVertex 0 6 1]
set c [$g addVertex -5 -5 2]
set axon [$g addEdge $soma $a 3 1 0 6 -1 0]
set dendrite [$g addEdge $soma $b 1 2 0 1 4 1]
set other [$g addEdge $soma $c -2 -2 1]
$g addAttribute thickness POINT float
foreach {edge radii} [list $axon {1.0 0.8 0.6 0.4} $dendrite {1.0 0.8 0.5 0.3} $other {0.9 0.6 0.3}] {
    set p 0
    foreach r $radii { $g setValue POINT thickness $edge $p $r; incr p }
}
puts [$g info]
