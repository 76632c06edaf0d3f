-- Makes the job of a replication agent unless it is there: @p1 is its name, @p2 its category.
IF NOT EXISTS (SELECT * FROM msdb.dbo.sysjobs WHERE name = @p1)
    EXEC msdb.dbo.sp_add_job @job_name = @p1, @enabled = 1, @category_name = @p2,
        @description = N'No description available.'
