# Saves a small traced neuron as KorvaMesh files in the three encodings
# (binary, ASCII, zlib-compressed binary), loads each back and checks that the
# graphs agree. Run: korva examples/korvamesh_files.tcl
# The file format is described in docs/korvamesh.md.

set g [create KxSpatialGraph neuron]
set soma [$g addVertex 0 0 0]
set tip [$g addVertex 10 0 0]
set branch [$g addVertex 4 5 1]
set axon [$g addEdge $soma $tip 3 1 0 6 -1 0]
set dendrite [$g addEdge $soma $branch 2 3 0.5]
$g addAttribute thickness POINT float
foreach {edge radii} [list $axon {1.0 0.7 0.5 0.3} $dendrite {1.0 0.6 0.4}] {
    set p 0
    foreach r $radii {
        $g setValue POINT thickness $edge $p $r
        incr p
    }
}
$g addLabelGroup Neuron EDGE
$g setValue EDGE Neuron $axon [$g addLabel Neuron 0 Axon 1 0 0]
$g setValue EDGE Neuron $dendrite [$g addLabel Neuron 0 Dendrite 0 0 1]
$g setTransform 2 0 0 0  0 2 0 0  0 0 2 0  0 0 5 1

set dir [file join [expr {[info exists ::env(TMPDIR)] ? $::env(TMPDIR) : "/tmp"}] korvamesh-example-[pid]]
file mkdir $dir
set expected [list [$g info] [$g parameters] [$g getTransform] [$g getBoundingBox]]
foreach format {KorvaMesh KorvaMeshASCII KorvaMeshCompressed} {
    set path [file join $dir $format.kxm]
    save $format $g $path
    set loaded [load $path]
    set got [list [$loaded info] [$loaded parameters] [$loaded getTransform] [$loaded getBoundingBox]]
    if {$got ne $expected} {
        file delete -force $dir
        error "$format: the loaded graph differs:\n$got\nexpected:\n$expected"
    }
    puts "$format: [file size $path] bytes, [lindex [split [string trim [$loaded info]] \n] end]"
    remove $loaded
}
file delete -force $dir
