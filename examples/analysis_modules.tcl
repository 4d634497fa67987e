# Analysis modules on a small neuron: segment statistics, distance along the
# graph, line-set casts and labelling from a label field; then the session is
# saved as a script and restored from it.
# Run: korva examples/analysis_modules.tcl

set dir [file dirname [info script]]
set cell [load [file join $dir data CA1.swc]]

puts "== Segment statistics"
set stats [create KxSpatialGraphStats]
$stats data connect $cell
set sheet [$stats create]
puts "[$sheet getNumTables] table(s) in $sheet; segment 0 is [$sheet getValue {Segment Statistics} Length 0] long"

puts "== Distance to a reference point"
set distance [create KxComputeDistanceToPoint]
$distance data connect $cell
$distance setRefPoint 0 0
puts [$distance referencePoint getValue]
set distances [$distance create]
puts "$distances holds DistanceToPoint: [expr {[lsearch -index 0 [$distances getAttributes POINT] DistanceToPoint] >= 0}]"

puts "== Line set and back"
set toLines [create CastKxSpatialGraphToKxLineSet]
$toLines data connect $cell
set lines [$toLines create]
set toGraph [create CastKxLineSetToKxSpatialGraph]
$toGraph data connect $lines
puts "[$lines info]"
puts "back to a graph: [$toGraph create]"

puts "== Labelling from a label field"
set field [create KxUniformLabelField3 regions.kxm]
$field setDimensions 2 1 1
$field setBoundingBox -1000 1000 -1000 1000 -1000 1000
$field addMaterial Outside 0 0 0
$field addMaterial Left 1 0 0
$field setVoxel 0 0 0 1
set label [create KxLabelSpatialGraph]
$label data connect $cell
$label LabelData connect $field
puts "labelled copy: [$label create]"

puts "== Saving and restoring the session"
# Data made in the session is saved first, so that the state can load it.
set tmp [file join [expr {[info exists env(TMPDIR)] ? $env(TMPDIR) : "/tmp"}] korva-example-[pid]]
file mkdir $tmp
save LabelField $field [file join $tmp regions.kxm]
set stateFile [file join $tmp state.tcl]
saveState $stateFile
set before [$sheet getValue {Segment Statistics} Volume 3]
remove -all
source $stateFile
file delete -force $tmp
puts "restored: [llength [all]] objects; volume of segment 3 again [$sheet getValue {Segment Statistics} Volume 3] (was $before)"
