set disable-randomization off
set debuginfod enabled off
set width 0
set confirm off
break Stop
commands
silent
up-silently 2
end

run
echo plain values\n
info locals
print reference
print *pointer
print points[1]
print pointer

continue
echo matrices, quaternions and handles\n
info locals
print *&matrices
print/x without
print/r copy.m_objects.second.m_delete.mp_pool == identity.m_objects.first.m_delete.mp_pool
set print pretty on
print translation
print translation.GetInverse()
print translation

continue
echo memory that holds no value\n
info locals

continue
echo elements of the cube\n
info locals
python gdb.execute("disable pretty-printer .* lum;CubeElementIds", to_string=True)
print edges[0]
kill
